#include "reports/inventory/RepAdmEntradas.h"

#include "session/SuModulo.h"

namespace paratzorep::reports {

RepAdmEntradas::RepAdmEntradas()
    : FormaMercancia("RepAdmEntradas", "Reporte de entradas", Documentos()) {
    Agrega("Frame1").Caption = "Entradas";
    Agrega("optAfecs", 0, "Afectadas");
    Agrega("optAfecs", 1, "Sin afectar");
    Agrega("optAfecs", 2, "Ambas").Value = 1;
}

const DocumentosMercancia& RepAdmEntradas::Documentos() {
    static const DocumentosMercancia d{"entradas", "entradasdetalle", "Entrada", "entradas"};
    return d;
}

int RepAdmEntradas::Afectadas() const {
    for (std::int16_t i = 0; i < 3; ++i)
        if (Ctl("optAfecs", i).Value != 0) return i;
    return 2;
}

std::string RepAdmEntradas::FormulaSeleccion(const FiltrosMercancia& f, int afectadas) {
    using session::LlenaXXX;
    std::string s;
    if (!f.desde.empty())
        s = session::UneCondicion(s, "{entradas.Fecha}>=" + session::FechaFormula(f.desde));
    if (!f.hasta.empty())
        s = session::UneCondicion(s, "{entradas.Fecha}<=" + session::FechaFormula(f.hasta));
    if (!f.producto.empty())
        s = session::UneCondicion(s, LlenaXXX("{entradasdetalle.Producto}='XXX'", f.producto));
    if (!f.descripcion.empty() && !f.totalizado)
        s = session::UneCondicion(
            s, LlenaXXX("'XXX'", f.descripcion) + " in {entradasdetalle.Descrip}");
    if (!f.destino.empty())
        s = session::UneCondicion(s, LlenaXXX("{entradas.Destino}='XXX'", f.destino));
    if (!f.usuario.empty())
        s = session::UneCondicion(s, LlenaXXX("{entradas.Usuario}='XXX'", f.usuario));
    if (afectadas != 2)
        s = session::UneCondicion(
            s, std::string("{entradas.Afectada}=") + (afectadas == 0 ? "1" : "0"));
    return s;
}

std::string RepAdmEntradas::Condiciones(const FiltrosMercancia& f, int afectadas) {
    using session::LlenaXXX;
    const auto& lib = mercancia::Lib();
    std::string w;
    if (!f.desde.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Fecha>='XXX'", lib.FechaSQL(f.desde)));
    if (!f.hasta.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Fecha<='XXX'", lib.FechaSQL(f.hasta)));
    if (!f.destino.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Destino='XXX'", f.destino));
    if (!f.usuario.empty()) w = lib.SumaWhereAnd(w, LlenaXXX("Usuario='XXX'", f.usuario));
    if (afectadas != 2)
        w = lib.SumaWhereAnd(w, std::string("Afectada=") + (afectadas == 0 ? "1" : "0"));
    return w;
}

std::string RepAdmEntradas::FormulaListado() const {
    return FormulaSeleccion(Filtros(), Afectadas());
}

std::string RepAdmEntradas::CondicionesResumen() const {
    return Condiciones(Filtros(), Afectadas());
}

std::vector<std::string> RepAdmEntradas::FiltrosPropios() const {
    const int a = Afectadas();
    if (a == 2) return {};
    return {a == 0 ? "Solo entradas afectadas" : "Solo entradas sin afectar"};
}

}  // namespace paratzorep::reports
