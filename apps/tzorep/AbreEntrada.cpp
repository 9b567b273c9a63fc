#include "apps/tzorep/AbreEntrada.h"

#include <iostream>

#include "apps/tzorep/Ayuda.h"
#include "renderer/TiposArchivo.h"
#include "session/Iniciales.h"
#include "toolkit/Texto.h"

namespace paratzorep::cli {

std::string TextoJson(const std::string& s) {
    std::string o = "\"";
    for (unsigned char c : s) {
        switch (c) {
            case '"':
                o += "\\\"";
                break;
            case '\\':
                o += "\\\\";
                break;
            case '\n':
                o += "\\n";
                break;
            case '\r':
                o += "\\r";
                break;
            case '\t':
                o += "\\t";
                break;
            default:
                if (c < 0x20) {
                    static const char* hex = "0123456789abcdef";
                    o += "\\u00";
                    o += hex[c >> 4];
                    o += hex[c & 15];
                } else {
                    o += static_cast<char>(c);
                }
        }
    }
    return o + "\"";
}

const reports::EntradaFachada* BuscaEntrada(const std::string& texto) {
    for (const auto& e : reports::TablaFachada()) {
        if (toolkit::detail::IgualesSinCaso(texto, e.metodo) || texto == std::to_string(e.numero)) {
            return &e;
        }
    }
    return nullptr;
}

void MenuCli::ShowForm(std::int16_t, std::shared_ptr<host::Formulario>& forma) {
    if (forma) forma->Carga();
    ultima = forma;
}

host::Respuesta InteraccionCli::Mensaje(const std::string& titulo, const std::string& texto,
                                        host::Icono icono, host::Botones botones) {
    ++mensajes;
    if (icono == host::Icono::Critico) ++criticos;
    return InteraccionTerminal::Mensaje(titulo, texto, icono, botones);
}

bool InteraccionCli::Dialogo(host::Formulario& forma) {
    if (forma.Nombre() != "frmExportarReporte") return InteraccionConsola::Dialogo(forma);
    if (!archivo) return false;
    forma.Carga();
    // The item whose extension ("(*.pdf)") is the requested type.
    const std::string buscado = "(*." + archivo->tipo + ")";
    const auto& tipos = forma.Ctl("cmbTipo").Items;
    int pos = -1;
    for (std::size_t i = 0; i < tipos.size() && pos < 0; ++i) {
        if (tipos[i].find(buscado) != std::string::npos) pos = static_cast<int>(i);
    }
    if (pos < 0) {
        std::cerr << "tzorep: el diálogo de exportación no ofrece el tipo " << archivo->tipo
                  << "\n";
        return false;
    }
    forma.Fija("cmbTipo", "#" + std::to_string(pos));
    forma.Ctl("lblRuta").Caption = archivo->carpeta;
    forma.Fija("txtArchivo", archivo->nombre);
    forma.Fija("cmdAceptar", "");
    return true;
}

Argumentos LeeArgumentos(const std::vector<std::string>& args,
                         const std::vector<std::string>& conValor,
                         const std::vector<std::string>& banderas) {
    Argumentos a;
    auto esDe = [](const std::vector<std::string>& lista, const std::string& s) {
        for (const auto& x : lista) {
            if (x == s) return true;
        }
        return false;
    };
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string opcion = args[i];
        std::optional<std::string> valor;
        if (opcion.rfind("--", 0) == 0) {
            if (auto igual = opcion.find('='); igual != std::string::npos) {
                valor = opcion.substr(igual + 1);
                opcion = opcion.substr(0, igual);
            }
        } else {
            if (a.entrada) throw ErrorUso("sobra el argumento '" + opcion + "'");
            a.entrada = BuscaEntrada(opcion);
            if (!a.entrada) {
                std::vector<std::string> metodos;
                for (const auto& e : reports::TablaFachada()) metodos.emplace_back(e.metodo);
                throw ErrorUso("no existe el reporte '" + opcion + "' (vea tzorep list)." +
                               QuisoDecir(opcion, metodos));
            }
            continue;
        }
        if (esDe(banderas, opcion)) {
            if (valor) throw ErrorUso(opcion + " no lleva valor");
            a.opciones.emplace_back(opcion, "");
            continue;
        }
        if (opcion != "--set" && !esDe(conValor, opcion)) {
            throw ErrorUso("opción desconocida: " + opcion);
        }
        if (!valor) {
            if (i + 1 >= args.size()) throw ErrorUso("falta el valor de " + opcion);
            valor = args[++i];
        }
        if (opcion == "--set") {
            const auto igual = valor->find('=');
            if (igual == std::string::npos || igual == 0) {
                throw ErrorUso("--set espera CONTROL=VALOR, no '" + *valor + "'");
            }
            a.fijar.emplace_back(valor->substr(0, igual), valor->substr(igual + 1));
        } else {
            a.opciones.emplace_back(opcion, *valor);
        }
    }
    if (!a.entrada) throw ErrorUso("falta el reporte (nombre o número de tzorep list)");
    return a;
}

EntradaAbierta AbreEntrada(const Contexto& ctx, const Argumentos& a,
                           std::shared_ptr<InteraccionCli> interaccion) {
    EntradaAbierta r;
    r.interaccion = std::move(interaccion);
    host::PonInteraccion(r.interaccion);
    session::Iniciales ini;
    r.arranque = Arranca(ctx.home, ini);
    for (const auto& aviso : r.arranque.avisos) std::cerr << "tzorep: aviso: " << aviso << "\n";
    r.menu = std::make_shared<MenuCli>();
    ini.objMenu(r.menu);
    reports::ReportesAdm fachada;
    (fachada.*(a.entrada->llamada))();
    r.forma = r.menu->ultima;
    if (!r.forma) {
        throw std::runtime_error(std::string("el reporte ") + a.entrada->metodo +
                                 " no mostró ninguna forma");
    }
    return r;
}

void AplicaFijar(host::Formulario& forma, const Argumentos& a) {
    for (const auto& [control, valor] : a.fijar) forma.Fija(control, valor);
}

bool FijaDesdeLinea(host::Formulario& forma, const Argumentos& a) {
    try {
        AplicaFijar(forma, a);
        return true;
    } catch (const host::ErrorFormulario& e) {
        std::cerr << "tzorep: --set: " << e.what() << "\n";
        return false;
    }
}

}  // namespace paratzorep::cli
