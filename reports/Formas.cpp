#include "reports/Formas.h"

#include <map>

#include "reports/RepAdmMovUser.h"
#include "reports/accounts/RepAdmAdSCtes.h"
#include "reports/accounts/RepAdmAdSProv.h"
#include "reports/accounts/RepAdmCargos.h"
#include "reports/accounts/RepAdmCxC.h"
#include "reports/accounts/RepAdmEdoCta.h"
#include "reports/accounts/RepAdmCobRecibos.h"
#include "reports/accounts/RepAdmPagosCtes.h"
#include "reports/accounts/RepAdmPagosProv.h"
#include "reports/accounts/RepAdmSALF.h"
#include "reports/accounts/RepAdmSALFp.h"
#include "reports/accounts/RepAdmSdoProdsCtes.h"
#include "reports/inventory/RepAdmEdoCtaProds.h"
#include "reports/inventory/RepAdmRotacion.h"
#include "reports/inventory/RepAdmAjustes.h"
#include "reports/inventory/RepAdmEntradas.h"
#include "reports/inventory/RepAdmPerdidas.h"
#include "reports/inventory/RepAdmSepMet.h"
#include "reports/inventory/RepAdmTraspasos.h"
#include "reports/sales/RepAdmComisXvend.h"
#include "reports/sales/RepAdmUtilXvend.h"
#include "reports/sales/RepAdmUtilidad.h"

namespace paratzorep::reports {

namespace detail {

struct RegistroFormas {
    std::map<std::string, CreadorForma> creadores;
    bool iniciado = false;
};

RegistroFormas& Registro() {
    static RegistroFormas r;
    return r;
}

void IniciaSiHaceFalta() {
    if (!Registro().iniciado) RegistraFormasBasicas();
}

template <class T>
void Alta(const char* nombre) {
    Registro().creadores[nombre] = [] { return std::make_shared<T>(); };
}

}  // namespace detail

void VisteMarcoDestino(Formulario& f) {
    f.Agrega("Frame2").Caption = "Enviar reporte a: ";
    const char* opciones[] = {"&Pantalla", "Im&presora", "&Archivo"};
    const char* imagenes[] = {"imgPant", "imgImpr", "imgArch"};
    bool alguna = false;
    for (std::int16_t i = 0; i < 3; ++i) {
        Control& o = f.Agrega("optDispos", i);
        o.Caption = opciones[i];
        alguna = alguna || o.Value != 0;
        f.Agrega(imagenes[i]);
    }
    if (!alguna) f.Ctl("optDispos", 0).Value = 1;
    const bool archivo = f.Ctl("optDispos", 2).Value != 0;
    f.Agrega("lblTipoArchivo").Visible = archivo;
    f.Agrega("lblArchivoReporte").Visible = archivo;
    f.Agrega("cmdImprimir").Caption = "Pr&ocesar";
}

FormaBasica::FormaBasica(std::string nombre, std::string caption)
    : Formulario(std::move(nombre), std::move(caption)) {
    VisteMarcoDestino(*this);
}

void RegistraForma(const std::string& nombre, CreadorForma creador) {
    detail::IniciaSiHaceFalta();
    detail::Registro().creadores[nombre] = std::move(creador);
}

void RegistraFormasBasicas() {
    detail::Registro().iniciado = true;
#define TZ_ALTA(Clase) detail::Alta<Clase>(#Clase);
    TZ_ALTA(RepAdmAdSCtes)
    TZ_ALTA(RepAdmAdSProv)
    TZ_ALTA(RepAdmAjustes)
    TZ_ALTA(RepAdmApar)
    TZ_ALTA(RepAdmGymAsistencias)
    TZ_ALTA(RepAdmMovUser)
    TZ_ALTA(RepAdmCargos)
    TZ_ALTA(RepAdmChecador)
    TZ_ALTA(RepAdmComisXvend)
    TZ_ALTA(RepAdmCompras)
    TZ_ALTA(RepAdmComprasND)
    TZ_ALTA(RepAdmConsigna)
    TZ_ALTA(RepAdmCortes)
    TZ_ALTA(RepAdmCotiza)
    TZ_ALTA(RepAdmCxC)
    TZ_ALTA(RepAdmCxP)
    TZ_ALTA(RepAdmDevCtes)
    TZ_ALTA(RepAdmDevProv)
    TZ_ALTA(RepAdmEdoCta)
    TZ_ALTA(RepAdmEdoCtaProds)
    TZ_ALTA(RepAdmEmbarques)
    TZ_ALTA(RepAdmEntradas)
    TZ_ALTA(RepAdmEntraCompra)
    TZ_ALTA(RepAdmEspVtas)
    TZ_ALTA(RepAdmMovCanc)
    TZ_ALTA(RepAdmMDC)
    TZ_ALTA(RepAdmOrdenes)
    TZ_ALTA(RepAdmPagosCtes)
    TZ_ALTA(RepAdmPagosProv)
    TZ_ALTA(RepAdmPedidos)
    TZ_ALTA(RepAdmPerdidas)
    TZ_ALTA(RepAdmProdsRecib)
    TZ_ALTA(RepAdmRecep)
    TZ_ALTA(RepAdmCobRecibos)
    TZ_ALTA(RepAdmRotacion)
    TZ_ALTA(RepAdmSALF)
    TZ_ALTA(RepAdmSALFp)
    TZ_ALTA(RepAdmKits)
    TZ_ALTA(RepAdmSdoProdsCtes)
    TZ_ALTA(RepAdmSepMet)
    TZ_ALTA(RepAdmTraspasos)
    TZ_ALTA(RepAdmUtilidad)
    TZ_ALTA(RepAdmUtilXvend)
    TZ_ALTA(RepAdmVtasCanc)
#undef TZ_ALTA
}

std::shared_ptr<Formulario> CreaForma(const std::string& nombre) {
    detail::IniciaSiHaceFalta();
    auto& creadores = detail::Registro().creadores;
    auto it = creadores.find(nombre);
    if (it == creadores.end() || !it->second) {
        throw ErrorFormulario("No existe la forma " + nombre);
    }
    auto forma = it->second();
    if (!forma) throw ErrorFormulario("No se pudo crear la forma " + nombre);
    return forma;
}

std::vector<std::string> FormasRegistradas() {
    detail::IniciaSiHaceFalta();
    std::vector<std::string> r;
    for (const auto& [nombre, _] : detail::Registro().creadores) r.push_back(nombre);
    return r;
}

}  // namespace paratzorep::reports
