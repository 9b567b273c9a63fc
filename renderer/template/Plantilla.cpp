#include "renderer/template/Plantilla.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <utility>

namespace paratzorep::renderer {

ErrorPlantilla::ErrorPlantilla(const std::string& archivo, int linea, int columna,
                               const std::string& mensaje)
    : std::runtime_error([&] {
          std::string t = "Plantilla '" + archivo + "'";
          if (linea > 0) t += ", línea " + std::to_string(linea);
          if (columna > 0) t += ", columna " + std::to_string(columna);
          return t + ": " + mensaje;
      }()),
      archivo_(archivo),
      linea_(linea),
      columna_(columna),
      detalle_(mensaje) {}

std::vector<std::string> Plantilla::ArchivosDatos() const {
    std::vector<std::string> r;
    r.reserve(tablas.size());
    for (const auto& t : tablas) r.push_back(t.ArchivoDatos());
    return r;
}

namespace {
bool MismoNombre(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}
}  // namespace

const FormulaPlantilla* Plantilla::BuscaFormula(std::string_view nombre) const {
    for (const auto& f : formulas)
        if (MismoNombre(f.nombre, nombre)) return &f;
    return nullptr;
}

FormulaPlantilla* Plantilla::BuscaFormula(std::string_view nombre) {
    return const_cast<FormulaPlantilla*>(std::as_const(*this).BuscaFormula(nombre));
}

namespace detail {

constexpr double kPuntosPorMm = 72.0 / 25.4;

// pugixml's reasons, in the user's language.
std::string DescripcionXml(pugi::xml_parse_status estado) {
    switch (estado) {
        case pugi::status_no_document_element:
            return "no hay ningún elemento: ¿el archivo está vacío o no es XML?";
        case pugi::status_unrecognized_tag:
            return "etiqueta no reconocida";
        case pugi::status_bad_pi:
            return "instrucción de proceso mal formada";
        case pugi::status_bad_comment:
            return "comentario mal formado";
        case pugi::status_bad_cdata:
            return "sección CDATA mal formada";
        case pugi::status_bad_doctype:
            return "declaración de tipo de documento mal formada";
        case pugi::status_bad_pcdata:
            return "texto mal formado";
        case pugi::status_bad_start_element:
            return "etiqueta de apertura mal formada";
        case pugi::status_bad_attribute:
            return "atributo mal formado";
        case pugi::status_bad_end_element:
            return "etiqueta de cierre mal formada";
        case pugi::status_end_element_mismatch:
            return "la etiqueta de cierre no corresponde a la abierta, o falta (¿archivo cortado?)";
        case pugi::status_out_of_memory:
            return "sin memoria";
        default:
            return "error de lectura";
    }
}

bool ContieneSinCaso(std::string_view texto, std::string_view buscado) {
    if (buscado.empty() || buscado.size() > texto.size()) return false;
    for (std::size_t i = 0; i + buscado.size() <= texto.size(); ++i)
        if (MismoNombre(texto.substr(i, buscado.size()), buscado)) return true;
    return false;
}

// Walks the XML tree keeping the source text, so that every complaint names its line
// and column.
class Lector {
  public:
    Lector(std::string_view xml, std::string archivo) : xml_(xml), archivo_(std::move(archivo)) {}

    Plantilla Lee() {
        pugi::xml_parse_result res =
            doc_.load_buffer(xml_.data(), xml_.size(), pugi::parse_default, pugi::encoding_utf8);
        if (!res) {
            auto [l, c] = Posicion(static_cast<std::size_t>(std::max<ptrdiff_t>(res.offset, 0)));
            throw ErrorPlantilla(archivo_, l, c,
                                 "el XML no es válido (" + DescripcionXml(res.status) + ")");
        }
        AtributosUnicos(doc_);
        pugi::xml_node raiz = doc_.document_element();
        if (std::strcmp(raiz.name(), "reporte") != 0)
            Falla(raiz, "se esperaba el elemento <reporte> y se encontró <" +
                            std::string(raiz.name()) + ">");
        Plantilla p;
        p.archivo = archivo_;
        pugi::xml_attribute ver = raiz.attribute("version");
        if (!ver) Falla(raiz, "falta el atributo 'version' del reporte");
        p.version = Entero(raiz, "version", ver.value());
        if (p.version != kVersionPlantilla)
            Falla(raiz, "la versión de plantilla " + std::string(ver.value()) +
                            " no es compatible con este programa (versión admitida: " +
                            std::to_string(kVersionPlantilla) + ")");
        Atributos(raiz, {"version", "titulo"});
        p.titulo = raiz.attribute("titulo").value();

        // Page and default font first: positions depend on the unit, elements on the font.
        if (auto pag = raiz.child("pagina")) LeePagina(pag, p.pagina);
        if (auto f = raiz.child("fuente")) {
            Atributos(f, {"familia", "tamano", "estilo"});
            LeeFuente(f, p.fuente);
        }
        fuenteBase_ = p.fuente;

        std::set<std::string> vistas;
        for (pugi::xml_node n : raiz.children()) {
            if (n.type() != pugi::node_element) continue;
            std::string nombre = n.name();
            if (nombre == "pagina" || nombre == "fuente") {
                if (!vistas.insert(nombre).second) Falla(n, "<" + nombre + "> está repetido");
            } else if (nombre == "tabla") {
                Atributos(n, {"nombre", "archivo"});
                TablaPlantilla t{Requerido(n, "nombre"), n.attribute("archivo").value(), Linea(n)};
                for (const auto& otra : p.tablas)
                    if (MismoNombre(otra.nombre, t.nombre))
                        Falla(n, "la tabla '" + t.nombre + "' está repetida");
                p.tablas.push_back(std::move(t));
            } else if (nombre == "union") {
                Atributos(n, {"tipo", "tabla", "de", "a"});
                UnionPlantilla u;
                std::string tipo = n.attribute("tipo").as_string("interna");
                if (tipo == "interna")
                    u.tipo = TipoUnion::Interna;
                else if (tipo == "izquierda")
                    u.tipo = TipoUnion::Izquierda;
                else
                    Falla(n, "tipo de unión desconocido '" + tipo +
                                 "' (se admite 'interna' o 'izquierda')");
                u.tabla = Requerido(n, "tabla");
                u.campoIzquierdo = Referencia(n, Requerido(n, "de"));
                u.campoDerecho = Referencia(n, Requerido(n, "a"));
                u.linea = Linea(n);
                p.uniones.push_back(std::move(u));
            } else if (nombre == "formula") {
                Atributos(n, {"nombre"});
                FormulaPlantilla f{Requerido(n, "nombre"), n.text().get(), Linea(n)};
                if (p.BuscaFormula(f.nombre))
                    Falla(n, "la fórmula '" + f.nombre + "' está repetida");
                p.formulas.push_back(std::move(f));
            } else if (nombre == "parametro") {
                Atributos(n, {"nombre", "valor"});
                p.parametros.push_back({Requerido(n, "nombre"), n.attribute("valor").value()});
            } else if (nombre == "orden") {
                Atributos(n, {});
                p.orden.push_back(n.text().get());
                p.lineasOrden.push_back(Linea(n));
            } else if (nombre == "grupo") {
                p.grupos.push_back(LeeGrupo(n, static_cast<int>(p.grupos.size()) + 1));
            } else if (nombre == "encabezadoReporte") {
                LeeSeccion(n, p.encabezadoReporte, 0);
            } else if (nombre == "encabezadoPagina") {
                LeeSeccion(n, p.encabezadoPagina, 0);
            } else if (nombre == "detalle") {
                LeeSeccion(n, p.detalle, 0);
            } else if (nombre == "piePagina") {
                LeeSeccion(n, p.piePagina, 0);
            } else if (nombre == "pieReporte") {
                LeeSeccion(n, p.pieReporte, 0);
            } else if (nombre == "sinDatos") {
                Atributos(n, {});
                p.sinDatos = n.text().get();
            } else {
                Falla(n, "elemento desconocido <" + nombre + ">");
            }
        }
        for (const auto& u : p.uniones) {
            bool hay = std::any_of(p.tablas.begin(), p.tablas.end(),
                                   [&](const auto& t) { return MismoNombre(t.nombre, u.tabla); });
            if (!hay)
                throw ErrorPlantilla(archivo_, u.linea, 0,
                                     "la unión nombra la tabla '" + u.tabla +
                                         "', que no está declarada con <tabla>");
        }
        return p;
    }

  private:
    std::pair<int, int> Posicion(std::size_t offset) const {
        offset = std::min(offset, xml_.size());
        int linea = 1, columna = 1;
        for (std::size_t i = 0; i < offset; ++i) {
            if (xml_[i] == '\n') {
                ++linea;
                columna = 1;
            } else if ((static_cast<unsigned char>(xml_[i]) & 0xC0) != 0x80) {
                ++columna;
            }
        }
        return {linea, columna};
    }

    [[noreturn]] void Falla(const pugi::xml_node& n, const std::string& mensaje) const {
        auto [l, c] = Posicion(static_cast<std::size_t>(std::max<ptrdiff_t>(n.offset_debug(), 0)));
        // offset_debug points at the name; the element starts one character before ('<').
        throw ErrorPlantilla(archivo_, l, c > 1 ? c - 1 : c, mensaje);
    }

    int Linea(const pugi::xml_node& n) const {
        return Posicion(static_cast<std::size_t>(std::max<ptrdiff_t>(n.offset_debug(), 0))).first;
    }

    // An attribute given twice: which one would count is anybody's guess.
    void AtributosUnicos(const pugi::xml_node& n) const {
        for (pugi::xml_node h : n.children()) {
            if (h.type() != pugi::node_element) continue;
            std::set<std::string_view> vistos;
            for (pugi::xml_attribute a : h.attributes())
                if (!vistos.insert(a.name()).second)
                    Falla(h, "el atributo '" + std::string(a.name()) + "' está repetido en <" +
                                 std::string(h.name()) + ">");
            AtributosUnicos(h);
        }
    }

    // Every attribute must be one the element knows: a misspelt name is an error, never
    // a silently ignored setting.
    void Atributos(const pugi::xml_node& n, std::initializer_list<std::string_view> validos) const {
        for (pugi::xml_attribute a : n.attributes()) {
            std::string_view nombre = a.name();
            if (std::find(validos.begin(), validos.end(), nombre) == validos.end())
                Falla(n, "atributo desconocido '" + std::string(nombre) + "' en <" +
                             std::string(n.name()) + ">");
        }
    }

    std::string Requerido(const pugi::xml_node& n, const char* atributo) const {
        pugi::xml_attribute a = n.attribute(atributo);
        if (!a || !*a.value())
            Falla(n, "falta el atributo '" + std::string(atributo) + "' en <" +
                         std::string(n.name()) + ">");
        return a.value();
    }

    int Entero(const pugi::xml_node& n, const char* atributo, std::string_view texto) const {
        int v = 0;
        auto [p, ec] = std::from_chars(texto.data(), texto.data() + texto.size(), v);
        if (ec != std::errc() || p != texto.data() + texto.size())
            Falla(n, "el atributo '" + std::string(atributo) + "' debe ser un número entero, no '" +
                         std::string(texto) + "'");
        return v;
    }

    double Numero(const pugi::xml_node& n, const char* atributo, std::string_view texto) const {
        std::string t(texto);
        std::istringstream in(t);
        in.imbue(std::locale::classic());
        double v = 0;
        in >> v;
        if (t.empty() || in.fail() || !in.eof())
            Falla(n,
                  "el atributo '" + std::string(atributo) + "' debe ser un número, no '" + t + "'");
        return v;
    }

    // A length in the template's unit, converted to points.
    double Medida(const pugi::xml_node& n, const char* atributo, double omision = 0) const {
        pugi::xml_attribute a = n.attribute(atributo);
        if (!a) return omision;
        double v = Numero(n, atributo, a.value());
        if (v < 0) Falla(n, "el atributo '" + std::string(atributo) + "' no puede ser negativo");
        // 200 inches: the largest page a PDF can hold.
        if (v * escala_ > 14400)
            Falla(n, "el atributo '" + std::string(atributo) + "' es mayor que cualquier página");
        return v * escala_;
    }

    bool Booleano(const pugi::xml_node& n, const char* atributo, bool omision = false) const {
        pugi::xml_attribute a = n.attribute(atributo);
        if (!a) return omision;
        std::string v = a.value();
        if (v == "si" || v == "sí" || v == "1" || v == "true") return true;
        if (v == "no" || v == "0" || v == "false") return false;
        Falla(n, "el atributo '" + std::string(atributo) + "' admite 'si' o 'no', no '" + v + "'");
    }

    // "tabla.campo", with or without the braces of the formula language.
    std::string Referencia(const pugi::xml_node& n, std::string texto) const {
        if (texto.size() >= 2 && texto.front() == '{' && texto.back() == '}')
            texto = texto.substr(1, texto.size() - 2);
        auto punto = texto.find('.');
        if (punto == std::string::npos || punto == 0 || punto + 1 == texto.size())
            Falla(n, "la referencia '" + texto + "' debe tener la forma tabla.campo");
        return texto;
    }

    void LeePagina(const pugi::xml_node& n, ConfigPagina& pag) {
        Atributos(n, {"tamano", "orientacion", "unidades", "margenes", "ancho", "alto"});
        std::string unidades = n.attribute("unidades").as_string("mm");
        if (unidades == "mm")
            escala_ = kPuntosPorMm;
        else if (unidades == "pt")
            escala_ = 1;
        else
            Falla(n, "unidades desconocidas '" + unidades + "' (se admite 'mm' o 'pt')");

        std::string tamano = n.attribute("tamano").as_string("A4");
        double ancho = 0, alto = 0;  // points
        if (tamano == "A4") {
            ancho = 210 * kPuntosPorMm;
            alto = 297 * kPuntosPorMm;
        } else if (tamano == "Carta" || tamano == "Letter") {
            ancho = 612;
            alto = 792;
        } else if (tamano == "Oficio" || tamano == "Legal") {
            ancho = 612;
            alto = 1008;
        } else if (tamano == "personal") {
            ancho = Medida(n, "ancho");
            alto = Medida(n, "alto");
            if (ancho < 72 || alto < 72)
                Falla(n, "un tamaño 'personal' necesita 'ancho' y 'alto' de al menos una pulgada");
        } else {
            Falla(n, "tamaño de página desconocido '" + tamano +
                         "' (se admite A4, Carta, Letter, Oficio, Legal o personal)");
        }
        if (tamano != "personal" && (n.attribute("ancho") || n.attribute("alto")))
            Falla(n, "'ancho' y 'alto' sólo se admiten con tamano=\"personal\"");
        std::string orientacion = n.attribute("orientacion").as_string("vertical");
        if (orientacion == "horizontal")
            std::swap(ancho, alto);
        else if (orientacion != "vertical")
            Falla(n, "orientación desconocida '" + orientacion +
                         "' (se admite 'vertical' u 'horizontal')");
        pag.ancho = ancho;
        pag.alto = alto;
        if (pugi::xml_attribute m = n.attribute("margenes")) {
            std::istringstream in(m.value());
            in.imbue(std::locale::classic());
            std::vector<double> v;
            double x;
            while (in >> x) v.push_back(x * escala_);
            if (!in.eof() || (v.size() != 1 && v.size() != 4) ||
                std::any_of(v.begin(), v.end(), [](double d) { return d < 0; }))
                Falla(n,
                      "'margenes' lleva uno o cuatro números no negativos "
                      "(arriba derecha abajo izquierda)");
            if (v.size() == 1) v.assign(4, v[0]);
            pag.margenSuperior = v[0];
            pag.margenDerecho = v[1];
            pag.margenInferior = v[2];
            pag.margenIzquierdo = v[3];
        }
        if (pag.AnchoUtil() < 36 || pag.AltoUtil() < 36)
            Falla(n, "los márgenes no dejan espacio para imprimir en la página");
    }

    void LeeFuente(const pugi::xml_node& n, Fuente& f) const {
        if (auto a = n.attribute("familia")) f.familia = a.value();
        if (auto a = n.attribute("tamano")) {
            f.tamano = Numero(n, "tamano", a.value());
            if (f.tamano < 2 || f.tamano > 200)
                Falla(n, "el tamaño de letra debe estar entre 2 y 200 puntos");
        }
        if (auto a = n.attribute("estilo")) {
            f.negrita = f.cursiva = f.subrayada = false;
            std::istringstream in(a.value());
            std::string palabra;
            while (in >> palabra) {
                if (palabra == "negrita")
                    f.negrita = true;
                else if (palabra == "cursiva")
                    f.cursiva = true;
                else if (palabra == "subrayado")
                    f.subrayada = true;
                else if (palabra != "normal")
                    Falla(n, "estilo de letra desconocido '" + palabra +
                                 "' (se admite negrita, cursiva, subrayado o normal)");
            }
        }
    }

    GrupoPlantilla LeeGrupo(const pugi::xml_node& n, int nivel) {
        Atributos(n, {"campo", "formula", "orden", "juntos", "paginaNueva", "repetirEncabezado"});
        GrupoPlantilla g;
        g.linea = Linea(n);
        bool campo = n.attribute("campo"), formula = n.attribute("formula");
        if (campo == formula) Falla(n, "un grupo lleva 'campo' o 'formula' (uno de los dos)");
        g.esFormula = formula;
        g.valor = formula ? Requerido(n, "formula") : Referencia(n, Requerido(n, "campo"));
        std::string orden = n.attribute("orden").as_string("asc");
        if (orden == "desc")
            g.descendente = true;
        else if (orden != "asc")
            Falla(n, "orden desconocido '" + orden + "' (se admite 'asc' o 'desc')");
        g.juntos = Booleano(n, "juntos");
        g.paginaNueva = Booleano(n, "paginaNueva");
        g.repetirEncabezado = Booleano(n, "repetirEncabezado");
        for (pugi::xml_node h : n.children()) {
            if (h.type() != pugi::node_element) continue;
            std::string nombre = h.name();
            if (nombre == "encabezado")
                LeeSeccion(h, g.encabezado, nivel);
            else if (nombre == "pie")
                LeeSeccion(h, g.pie, nivel);
            else
                Falla(h, "dentro de <grupo> sólo se admiten <encabezado> y <pie>, no <" + nombre +
                             ">");
        }
        return g;
    }

    void LeeSeccion(const pugi::xml_node& n, SeccionPlantilla& s, int nivelGrupo) {
        if (s.presente) Falla(n, "la sección <" + std::string(n.name()) + "> está repetida");
        Atributos(n, {"alto", "suprimirVacia"});
        s.presente = true;
        s.suprimirVacia = Booleano(n, "suprimirVacia");
        std::string seccion = n.name();
        double extension = 0;
        for (pugi::xml_node e : n.children()) {
            if (e.type() != pugi::node_element) continue;
            ElementoPlantilla el = LeeElemento(e, seccion, nivelGrupo);
            double fondo = el.tipo == TipoElemento::Linea
                               ? std::max(el.y, el.y2)
                               : el.y + (el.alto > 0 ? el.alto : el.fuente.tamano * 1.2);
            extension = std::max(extension, fondo);
            s.elementos.push_back(std::move(el));
        }
        s.alto = n.attribute("alto") ? Medida(n, "alto") : extension;
    }

    ElementoPlantilla LeeElemento(const pugi::xml_node& n, const std::string& seccion,
                                  int nivelGrupo) {
        ElementoPlantilla el;
        el.linea = Linea(n);
        el.fuente = fuenteBase_;
        std::string tipo = n.name();
        static const std::map<std::string, TipoElemento> kTipos = {
            {"texto", TipoElemento::Texto},     {"campo", TipoElemento::Campo},
            {"formula", TipoElemento::Formula}, {"parametro", TipoElemento::Parametro},
            {"resumen", TipoElemento::Resumen}, {"especial", TipoElemento::Especial},
            {"linea", TipoElemento::Linea},     {"caja", TipoElemento::Caja},
        };
        auto it = kTipos.find(tipo);
        if (it == kTipos.end()) Falla(n, "elemento desconocido <" + tipo + "> en una sección");
        el.tipo = it->second;

        if (el.tipo == TipoElemento::Linea) {
            Atributos(n, {"x", "y", "x2", "y2", "ancho", "grosor"});
            el.x = Medida(n, "x");
            el.y = Medida(n, "y");
            // A horizontal rule may give its length as 'ancho' instead of an end point.
            el.x2 = n.attribute("x2") ? Medida(n, "x2") : el.x + Medida(n, "ancho");
            el.y2 = n.attribute("y2") ? Medida(n, "y2") : el.y;
            el.grosor =
                n.attribute("grosor") ? Numero(n, "grosor", n.attribute("grosor").value()) : 0.5;
            return el;
        }
        if (el.tipo == TipoElemento::Caja) {
            Atributos(n, {"x", "y", "ancho", "alto", "grosor", "relleno"});
            el.x = Medida(n, "x");
            el.y = Medida(n, "y");
            el.ancho = Medida(n, "ancho");
            el.alto = Medida(n, "alto");
            el.grosor =
                n.attribute("grosor") ? Numero(n, "grosor", n.attribute("grosor").value()) : 0.5;
            if (n.attribute("relleno")) {
                el.gris = Numero(n, "relleno", n.attribute("relleno").value());
                if (el.gris < 0 || el.gris > 1)
                    Falla(n, "'relleno' es un gris entre 0 (negro) y 1 (blanco)");
            }
            return el;
        }

        std::vector<std::string_view> validos = {"x",      "y",      "ancho",  "alto",  "familia",
                                                 "tamano", "estilo", "alinea", "crece", "formato"};
        if (el.tipo != TipoElemento::Texto) validos.push_back("titulo");
        switch (el.tipo) {
            case TipoElemento::Campo:
                validos.push_back("ref");
                break;
            case TipoElemento::Formula:
            case TipoElemento::Parametro:
                validos.push_back("nombre");
                break;
            case TipoElemento::Resumen:
                for (auto a : {"funcion", "campo", "formula", "ambito", "acumulado"})
                    validos.push_back(a);
                break;
            case TipoElemento::Especial:
                validos.push_back("tipo");
                validos.push_back("texto");
                break;
            default:
                break;
        }
        for (pugi::xml_attribute a : n.attributes())
            if (std::find(validos.begin(), validos.end(), std::string_view(a.name())) ==
                validos.end())
                Falla(n, "atributo desconocido '" + std::string(a.name()) + "' en <" + tipo + ">");

        el.x = Medida(n, "x");
        el.y = Medida(n, "y");
        el.ancho = Medida(n, "ancho");
        el.alto = Medida(n, "alto");
        LeeFuente(n, el.fuente);
        if (auto a = n.attribute("alinea")) {
            std::string v = a.value();
            if (v == "izquierda")
                el.alineacion = Alineacion::Izquierda;
            else if (v == "centro")
                el.alineacion = Alineacion::Centro;
            else if (v == "derecha")
                el.alineacion = Alineacion::Derecha;
            else
                Falla(n,
                      "alineación desconocida '" + v + "' (se admite izquierda, centro o derecha)");
        }
        el.crece = Booleano(n, "crece");
        el.formato = n.attribute("formato").value();
        el.titulo = n.attribute("titulo").value();

        switch (el.tipo) {
            case TipoElemento::Texto:
                el.valor = n.text().get();
                break;
            case TipoElemento::Campo:
                el.valor = Referencia(n, Requerido(n, "ref"));
                break;
            case TipoElemento::Formula:
            case TipoElemento::Parametro:
                el.valor = Requerido(n, "nombre");
                break;
            case TipoElemento::Resumen:
                LeeResumen(n, el, seccion, nivelGrupo);
                break;
            case TipoElemento::Especial:
                LeeEspecial(n, el);
                break;
            default:
                break;
        }
        return el;
    }

    void LeeResumen(const pugi::xml_node& n, ElementoPlantilla& el, const std::string& seccion,
                    int nivelGrupo) const {
        static const std::map<std::string, FuncionResumen> kFunciones = {
            {"suma", FuncionResumen::Suma},
            {"cuenta", FuncionResumen::Cuenta},
            {"distintos", FuncionResumen::CuentaDistintos},
            {"promedio", FuncionResumen::Promedio},
            {"minimo", FuncionResumen::Minimo},
            {"maximo", FuncionResumen::Maximo},
        };
        std::string f = n.attribute("funcion").as_string("suma");
        auto it = kFunciones.find(f);
        if (it == kFunciones.end())
            Falla(n, "función de resumen desconocida '" + f +
                         "' (se admite suma, cuenta, distintos, promedio, minimo o maximo)");
        el.funcion = it->second;
        bool campo = n.attribute("campo"), formula = n.attribute("formula");
        if (campo == formula) Falla(n, "un resumen lleva 'campo' o 'formula' (uno de los dos)");
        el.resumenDeFormula = formula;
        el.valor = formula ? Requerido(n, "formula") : Referencia(n, Requerido(n, "campo"));
        el.acumulado = Booleano(n, "acumulado", seccion == "detalle");

        // Scope: a group's own sections summarize the group; page sections, the page;
        // everything else, the report. 'ambito' overrides.
        if (nivelGrupo > 0)
            el.ambito = {AmbitoResumen::Tipo::Grupo, nivelGrupo};
        else if (seccion == "piePagina" || seccion == "encabezadoPagina")
            el.ambito = {AmbitoResumen::Tipo::Pagina, 0};
        if (auto a = n.attribute("ambito")) {
            std::string v = a.value();
            if (v == "reporte")
                el.ambito = {AmbitoResumen::Tipo::Reporte, 0};
            else if (v == "pagina")
                el.ambito = {AmbitoResumen::Tipo::Pagina, 0};
            else if (v == "grupo" && nivelGrupo > 0)
                el.ambito = {AmbitoResumen::Tipo::Grupo, nivelGrupo};
            else {
                int nivel = 0;
                auto [p, ec] = std::from_chars(v.data(), v.data() + v.size(), nivel);
                if (ec != std::errc() || p != v.data() + v.size() || nivel < 1)
                    Falla(n, "ámbito de resumen desconocido '" + v +
                                 "' (se admite reporte, pagina, grupo o el número del grupo)");
                el.ambito = {AmbitoResumen::Tipo::Grupo, nivel};
            }
        }
    }

    void LeeEspecial(const pugi::xml_node& n, ElementoPlantilla& el) const {
        static const std::map<std::string, CampoEspecial> kEspeciales = {
            {"pagina", CampoEspecial::NumeroPagina},
            {"totalPaginas", CampoEspecial::TotalPaginas},
            {"paginaDeTotal", CampoEspecial::PaginaDeTotal},
            {"fecha", CampoEspecial::FechaImpresion},
            {"hora", CampoEspecial::HoraImpresion},
            {"registro", CampoEspecial::NumeroRegistro},
        };
        std::string t = Requerido(n, "tipo");
        auto it = kEspeciales.find(t);
        if (it == kEspeciales.end())
            Falla(n, "campo especial desconocido '" + t +
                         "' (se admite pagina, totalPaginas, paginaDeTotal, fecha, hora o "
                         "registro)");
        el.especial = it->second;
        el.valor = n.attribute("texto").value();
    }

    std::string_view xml_;
    std::string archivo_;
    pugi::xml_document doc_;
    double escala_ = kPuntosPorMm;
    Fuente fuenteBase_;
};

}  // namespace detail

int LineaQueNombra(const Plantilla& p, std::string_view tabla, std::string_view campo) {
    if (campo.empty()) {
        for (const auto& t : p.tablas)
            if (MismoNombre(t.nombre, tabla)) return t.linea;
        return 0;
    }
    const std::string ref = std::string(tabla) + "." + std::string(campo);
    const std::string llaves = "{" + ref + "}";
    int linea = 0;
    auto anota = [&](int l) {
        if (l > 0 && (linea == 0 || l < linea)) linea = l;
    };
    auto seccion = [&](const SeccionPlantilla& s) {
        for (const auto& e : s.elementos) {
            if ((e.tipo == TipoElemento::Campo ||
                 (e.tipo == TipoElemento::Resumen && !e.resumenDeFormula)) &&
                MismoNombre(e.valor, ref))
                anota(e.linea);
        }
    };
    for (const auto* s :
         {&p.encabezadoReporte, &p.encabezadoPagina, &p.detalle, &p.piePagina, &p.pieReporte})
        seccion(*s);
    for (const auto& g : p.grupos) {
        if (!g.esFormula && MismoNombre(g.valor, ref)) anota(g.linea);
        seccion(g.encabezado);
        seccion(g.pie);
    }
    for (const auto& f : p.formulas)
        if (detail::ContieneSinCaso(f.expresion, llaves)) anota(f.linea);
    for (const auto& u : p.uniones)
        if (MismoNombre(u.campoIzquierdo, ref) || MismoNombre(u.campoDerecho, ref)) anota(u.linea);
    for (std::size_t i = 0; i < p.orden.size() && i < p.lineasOrden.size(); ++i)
        if (detail::ContieneSinCaso(p.orden[i], llaves)) anota(p.lineasOrden[i]);
    return linea;
}

Plantilla LeePlantillaTexto(std::string_view xml, const std::string& archivo) {
    detail::Lector lector(xml, archivo);
    Plantilla p = lector.Lee();
    // Groups and group levels named by summaries must exist.
    auto revisa = [&](const SeccionPlantilla& s) {
        for (const auto& e : s.elementos)
            if (e.tipo == TipoElemento::Resumen && e.ambito.tipo == AmbitoResumen::Tipo::Grupo &&
                e.ambito.nivel > static_cast<int>(p.grupos.size()))
                throw ErrorPlantilla(archivo, e.linea, 0,
                                     "el resumen se refiere al grupo " +
                                         std::to_string(e.ambito.nivel) +
                                         ", que no existe en la plantilla");
    };
    for (const auto* s :
         {&p.encabezadoReporte, &p.encabezadoPagina, &p.detalle, &p.piePagina, &p.pieReporte})
        revisa(*s);
    for (const auto& g : p.grupos) {
        revisa(g.encabezado);
        revisa(g.pie);
    }
    return p;
}

Plantilla LeePlantilla(const std::string& ruta) {
    std::ifstream in(ruta, std::ios::binary);
    if (!in)
        throw ErrorPlantilla(
            ruta, 0, 0, std::string("no se pudo abrir el archivo (") + std::strerror(errno) + ")");
    std::ostringstream buf;
    buf << in.rdbuf();
    if (in.bad()) throw ErrorPlantilla(ruta, 0, 0, "no se pudo leer el archivo");
    return LeePlantillaTexto(buf.str(), ruta);
}

}  // namespace paratzorep::renderer
