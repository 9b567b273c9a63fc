// The template store's annex (reports attached to a template) and the icons of the
// general database. The templates themselves are loaded from their sources, not here.
#include "schema/demo/Simulacion.h"

namespace paratzorep::schema::detail {

void Simulacion::cierrePlantillas() {
    auto anx = lote("anexoreportes", "Id,ArchivoPadre,Archivo,DESCripcion");
    anx->agrega(Renglon().n(1).t("fmtAjuste.rpt").t("fmtAjuste.rpt").t("Formato de ajuste"));
    anx->agrega(
        Renglon().n(2).t("fmtAjuste.rpt").t("fmtAjuste2.rpt").t("Formato de ajuste con costos"));
    anx->agrega(Renglon().n(3).t("adsdcm.rpt").t("adsdcm2.rpt").t("Antigüedad de saldos resumida"));
    anx->termina();

    if (op_.baseGeneral.empty()) return;
    auto ico = loteGeneral("iconos", "Id,DESCripcion,Imagen");
    // A 1x1 transparent PNG serves every demo icon.
    const char* png =
        "X'89504E470D0A1A0A0000000D4948445200000001000000010806000000"
        "1F15C4890000000D4944415478DA63F8FFFF3F0005FE02FEA7D6A4560000000049454E44AE426082'";
    int idIco = 1;
    for (const char* d : {"IMPRIMIR", "PANTALLA", "ARCHIVO", "BUSCAR", "ACEPTAR", "CANCELAR"})
        ico->agrega(Renglon().n(idIco++).t(d).r(png));
    ico->termina();
}

}  // namespace paratzorep::schema::detail
