#include "reports/ReportesAdm.h"

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <string_view>

#include "host/Menu.h"
#include "reports/Formas.h"
#include "reports/Marco.h"
#include "session/Sesion.h"
#include "session/SuModulo.h"
#include "toolkit/DeArchivos.h"
#include "toolkit/ElSkin.h"

namespace paratzorep::reports {

namespace detail {

std::map<std::string, std::shared_ptr<Formulario>>& Instancias() {
    static std::map<std::string, std::shared_ptr<Formulario>> instancias;
    return instancias;
}

host::Menu& ExigeMenu() {
    auto& menu = session::sesion().objMenu;
    if (!menu) throw std::runtime_error("No hay objeto de menú (objMenu) en la sesión");
    return *menu;
}

// The form that ShowForm handed back, which must still be a form of the same class.
void ExigeMismaForma(const std::shared_ptr<Formulario>& forma, const std::string& nombre) {
    if (!forma || forma->Nombre() != nombre) {
        throw ErrorFormulario("ShowForm devolvió un objeto que no es la forma " + nombre);
    }
}

void MuestraSimple(const std::string& nombre, std::int16_t opcion) {
    auto& instancia = Instancias()[nombre];
    if (!instancia || instancia->Descargada()) instancia = CreaForma(nombre);
    std::shared_ptr<Formulario> forma = instancia;
    ExigeMenu().ShowForm(opcion, forma);
    ExigeMismaForma(forma, nombre);
    instancia = forma;
}

struct Pareado {
    const char* llave;
    std::int16_t codigo;
    const char* modo;
    const char* sufijo;
    bool proveedor;
    bool marcador;
};

// The four paired entries by method.
const Pareado& PareadoDe(std::string_view metodo) {
    static const std::map<std::string_view, Pareado> pareados = {
        {"CargosClientes", {"RepCargosCtes", 73, "C", "a clientes", false, true}},
        {"CargosProveedores", {"RepCargosProv", 79, "P", "de proveedores", true, false}},
        {"EdoCtaClientes", {"RepEdoCtaCtes", 75, "C", "clientes", false, false}},
        {"EdoCtaProveedores", {"RepEdoCtaProv", 81, "P", "proveedores", true, false}},
    };
    return pareados.at(metodo);
}

void MuestraPareado(const std::string& nombre, std::int16_t opcion, const Pareado& p) {
    if (p.marcador) {
        auto archivos = session::ObjetoAyuda<toolkit::DeArchivos>("DeArchivos");
        if (!archivos) throw std::runtime_error("No se pudo crear el objeto kvtz5.DeArchivos");
        if (archivos->HayArchivo(CarpetaComponente() + p.llave + ".BND")) return;
    }
    std::shared_ptr<Formulario> forma = CreaForma(nombre);
    forma->Carga();
    auto* par = dynamic_cast<FormularioPareado*>(forma.get());
    if (!par) throw ErrorFormulario("La forma " + nombre + " no sirve a clientes y proveedores");
    par->Llave = p.llave;
    par->Codigo = p.codigo;
    par->Ctl("lblTipo").Caption = p.modo;
    par->Caption += p.sufijo;
    if (p.proveedor) par->Ctl("lblPersona").Caption = "Proveedor";
    par->AjustaModo();
    auto skin = session::ObjetoAyuda<toolkit::ElSkin>("ElSkin");
    if (!skin) throw std::runtime_error("No se pudo crear el objeto kvtz5.ElSkin");
    skin->LeeCoord(*forma);
    ExigeMenu().ShowForm(opcion, forma);
    ExigeMismaForma(forma, nombre);
    auto* devuelta = dynamic_cast<FormularioPareado*>(forma.get());
    if (!devuelta)
        throw ErrorFormulario("ShowForm devolvió un objeto que no es la forma " + nombre);
    devuelta->Llave = devuelta->Llave + "\t" + p.llave;
}

}  // namespace detail

void ReportesAdm::ADSClientes() {
    detail::MuestraSimple("RepAdmAdSCtes", 218);
}
void ReportesAdm::ADSProveedores() {
    detail::MuestraSimple("RepAdmAdSProv", 98);
}
void ReportesAdm::Ajustes() {
    detail::MuestraSimple("RepAdmAjustes", 100);
}
void ReportesAdm::Apartados() {
    detail::MuestraSimple("RepAdmApar", 304);
}
void ReportesAdm::AsistenciasGym() {
    detail::MuestraSimple("RepAdmGymAsistencias", 324);
}
void ReportesAdm::BitacoraUsuarios() {
    detail::MuestraSimple("RepAdmMovUser", 105);
}
void ReportesAdm::CargosClientes() {
    detail::MuestraPareado("RepAdmCargos", 215, detail::PareadoDe("CargosClientes"));
}

void ReportesAdm::CargosProveedores() {
    detail::MuestraPareado("RepAdmCargos", 95, detail::PareadoDe("CargosProveedores"));
}

void ReportesAdm::ChecadorGym() {
    detail::MuestraSimple("RepAdmChecador", 388);
}
void ReportesAdm::ComisionesXvendedor() {
    detail::MuestraSimple("RepAdmComisXvend", 230);
}
void ReportesAdm::Compras() {
    detail::MuestraSimple("RepAdmCompras", 93);
}
void ReportesAdm::ComprasND() {
    detail::MuestraSimple("RepAdmComprasND", 94);
}
void ReportesAdm::Consignaciones() {
    detail::MuestraSimple("RepAdmConsigna", 390);
}
void ReportesAdm::CortesDeCarne() {
    detail::MuestraSimple("RepAdmCortes", 409);
}
void ReportesAdm::Cotizaciones() {
    detail::MuestraSimple("RepAdmCotiza", 223);
}
void ReportesAdm::CxC() {
    detail::MuestraSimple("RepAdmCxC", 219);
}
void ReportesAdm::cxp() {
    detail::MuestraSimple("RepAdmCxP", 99);
}
void ReportesAdm::DevolClientes() {
    detail::MuestraSimple("RepAdmDevCtes", 229);
}
void ReportesAdm::DevolProveedores() {
    detail::MuestraSimple("RepAdmDevProv", 103);
}
void ReportesAdm::EdoCtaClientes() {
    detail::MuestraPareado("RepAdmEdoCta", 217, detail::PareadoDe("EdoCtaClientes"));
}

void ReportesAdm::EdoCtaProductos() {
    detail::MuestraSimple("RepAdmEdoCtaProds", 421);
}
void ReportesAdm::EdoCtaProveedores() {
    detail::MuestraPareado("RepAdmEdoCta", 97, detail::PareadoDe("EdoCtaProveedores"));
}

void ReportesAdm::Embarques() {
    detail::MuestraSimple("RepAdmEmbarques", 234);
}
void ReportesAdm::Entradas() {
    detail::MuestraSimple("RepAdmEntradas", 145);
}
void ReportesAdm::EntradasYcompras() {
    detail::MuestraSimple("RepAdmEntraCompra", 361);
}
void ReportesAdm::EspecialDeVentas() {
    detail::MuestraSimple("RepAdmEspVtas", 362);
}
void ReportesAdm::MovtosCancelados() {
    detail::MuestraSimple("RepAdmMovCanc", 397);
}
void ReportesAdm::MovtosDeClientes() {
    detail::MuestraSimple("RepAdmMDC", 425);
}
void ReportesAdm::Ordenes() {
    detail::MuestraSimple("RepAdmOrdenes", 212);
}
void ReportesAdm::PagosClientes() {
    detail::MuestraSimple("RepAdmPagosCtes", 216);
}
void ReportesAdm::PagosProveedores() {
    detail::MuestraSimple("RepAdmPagosProv", 96);
}
void ReportesAdm::Pedidos() {
    detail::MuestraSimple("RepAdmPedidos", 224);
}
void ReportesAdm::Perdidas() {
    detail::MuestraSimple("RepAdmPerdidas", 104);
}
void ReportesAdm::ProductosRecibidos() {
    detail::MuestraSimple("RepAdmProdsRecib", 366);
}
void ReportesAdm::RecepcionMercancia() {
    detail::MuestraSimple("RepAdmRecep", 456);
}
void ReportesAdm::Recibos() {
    detail::MuestraSimple("RepAdmCobRecibos", 220);
}
void ReportesAdm::RotacionProductos() {
    detail::MuestraSimple("RepAdmRotacion", 431);
}
void ReportesAdm::SaldosAlaFechaCtes() {
    detail::MuestraSimple("RepAdmSALF", 221);
}
void ReportesAdm::SaldosAlaFechaProv() {
    detail::MuestraSimple("RepAdmSALFp", 248);
}
void ReportesAdm::SalidasEntradasKits() {
    detail::MuestraSimple("RepAdmKits", 101);
}
void ReportesAdm::SaldosProdsCtes() {
    detail::MuestraSimple("RepAdmSdoProdsCtes", 422);
}
void ReportesAdm::SeparacionMetales() {
    detail::MuestraSimple("RepAdmSepMet", 428);
}
void ReportesAdm::Traspasos() {
    detail::MuestraSimple("RepAdmTraspasos", 144);
}
void ReportesAdm::Utilidad() {
    detail::MuestraSimple("RepAdmUtilidad", 231);
}
void ReportesAdm::UtilidadXvendedor() {
    detail::MuestraSimple("RepAdmUtilXvend", 363);
}
void ReportesAdm::VentasCanceladas() {
    detail::MuestraSimple("RepAdmVtasCanc", 365);
}

const std::array<EntradaFachada, 46>& TablaFachada() {
    static const std::array<EntradaFachada, 46> tabla = {{
        {1, "ADSClientes", "RepAdmAdSCtes", 218, &ReportesAdm::ADSClientes},
        {2, "ADSProveedores", "RepAdmAdSProv", 98, &ReportesAdm::ADSProveedores},
        {3, "Ajustes", "RepAdmAjustes", 100, &ReportesAdm::Ajustes},
        {4, "Apartados", "RepAdmApar", 304, &ReportesAdm::Apartados},
        {5, "AsistenciasGym", "RepAdmGymAsistencias", 324, &ReportesAdm::AsistenciasGym},
        {6, "BitacoraUsuarios", "RepAdmMovUser", 105, &ReportesAdm::BitacoraUsuarios},
        {7, "CargosClientes", "RepAdmCargos", 215, &ReportesAdm::CargosClientes},
        {8, "CargosProveedores", "RepAdmCargos", 95, &ReportesAdm::CargosProveedores},
        {9, "ChecadorGym", "RepAdmChecador", 388, &ReportesAdm::ChecadorGym},
        {10, "ComisionesXvendedor", "RepAdmComisXvend", 230, &ReportesAdm::ComisionesXvendedor},
        {11, "Compras", "RepAdmCompras", 93, &ReportesAdm::Compras},
        {12, "ComprasND", "RepAdmComprasND", 94, &ReportesAdm::ComprasND},
        {13, "Consignaciones", "RepAdmConsigna", 390, &ReportesAdm::Consignaciones},
        {14, "CortesDeCarne", "RepAdmCortes", 409, &ReportesAdm::CortesDeCarne},
        {15, "Cotizaciones", "RepAdmCotiza", 223, &ReportesAdm::Cotizaciones},
        {16, "CxC", "RepAdmCxC", 219, &ReportesAdm::CxC},
        {17, "cxp", "RepAdmCxP", 99, &ReportesAdm::cxp},
        {18, "DevolClientes", "RepAdmDevCtes", 229, &ReportesAdm::DevolClientes},
        {19, "DevolProveedores", "RepAdmDevProv", 103, &ReportesAdm::DevolProveedores},
        {20, "EdoCtaClientes", "RepAdmEdoCta", 217, &ReportesAdm::EdoCtaClientes},
        {21, "EdoCtaProductos", "RepAdmEdoCtaProds", 421, &ReportesAdm::EdoCtaProductos},
        {22, "EdoCtaProveedores", "RepAdmEdoCta", 97, &ReportesAdm::EdoCtaProveedores},
        {23, "Embarques", "RepAdmEmbarques", 234, &ReportesAdm::Embarques},
        {24, "Entradas", "RepAdmEntradas", 145, &ReportesAdm::Entradas},
        {25, "EntradasYcompras", "RepAdmEntraCompra", 361, &ReportesAdm::EntradasYcompras},
        {26, "EspecialDeVentas", "RepAdmEspVtas", 362, &ReportesAdm::EspecialDeVentas},
        {27, "MovtosCancelados", "RepAdmMovCanc", 397, &ReportesAdm::MovtosCancelados},
        {28, "MovtosDeClientes", "RepAdmMDC", 425, &ReportesAdm::MovtosDeClientes},
        {29, "Ordenes", "RepAdmOrdenes", 212, &ReportesAdm::Ordenes},
        {30, "PagosClientes", "RepAdmPagosCtes", 216, &ReportesAdm::PagosClientes},
        {31, "PagosProveedores", "RepAdmPagosProv", 96, &ReportesAdm::PagosProveedores},
        {32, "Pedidos", "RepAdmPedidos", 224, &ReportesAdm::Pedidos},
        {33, "Perdidas", "RepAdmPerdidas", 104, &ReportesAdm::Perdidas},
        {34, "ProductosRecibidos", "RepAdmProdsRecib", 366, &ReportesAdm::ProductosRecibidos},
        {35, "RecepcionMercancia", "RepAdmRecep", 456, &ReportesAdm::RecepcionMercancia},
        {36, "Recibos", "RepAdmCobRecibos", 220, &ReportesAdm::Recibos},
        {37, "RotacionProductos", "RepAdmRotacion", 431, &ReportesAdm::RotacionProductos},
        {38, "SaldosAlaFechaCtes", "RepAdmSALF", 221, &ReportesAdm::SaldosAlaFechaCtes},
        {39, "SaldosAlaFechaProv", "RepAdmSALFp", 248, &ReportesAdm::SaldosAlaFechaProv},
        {40, "SalidasEntradasKits", "RepAdmKits", 101, &ReportesAdm::SalidasEntradasKits},
        {41, "SaldosProdsCtes", "RepAdmSdoProdsCtes", 422, &ReportesAdm::SaldosProdsCtes},
        {42, "SeparacionMetales", "RepAdmSepMet", 428, &ReportesAdm::SeparacionMetales},
        {43, "Traspasos", "RepAdmTraspasos", 144, &ReportesAdm::Traspasos},
        {44, "Utilidad", "RepAdmUtilidad", 231, &ReportesAdm::Utilidad},
        {45, "UtilidadXvendedor", "RepAdmUtilXvend", 363, &ReportesAdm::UtilidadXvendedor},
        {46, "VentasCanceladas", "RepAdmVtasCanc", 365, &ReportesAdm::VentasCanceladas},
    }};
    return tabla;
}

std::string TituloEntrada(const EntradaFachada& e) {
    const auto forma = CreaForma(e.forma);
    std::string titulo = forma->Caption;
    if (dynamic_cast<FormularioPareado*>(forma.get())) titulo += detail::PareadoDe(e.metodo).sufijo;
    return titulo;
}

bool EntradaDisponible(const EntradaFachada& e) {
    return dynamic_cast<FormaReporte*>(CreaForma(e.forma).get()) != nullptr;
}

std::shared_ptr<Formulario> InstanciaPorOmision(const std::string& forma) {
    auto& instancias = detail::Instancias();
    auto it = instancias.find(forma);
    if (it == instancias.end() || !it->second || it->second->Descargada()) return nullptr;
    return it->second;
}

void OlvidaInstancias() {
    detail::Instancias().clear();
}

namespace detail {

std::string& CarpetaFijada() {
    static std::string carpeta;
    return carpeta;
}

void FijaCarpetaComponente(std::string carpeta) {
    if (!carpeta.empty() && carpeta.back() != '/') carpeta += '/';
    CarpetaFijada() = std::move(carpeta);
}

}  // namespace detail

std::string CarpetaComponente() {
    namespace fs = std::filesystem;
    if (!detail::CarpetaFijada().empty()) return detail::CarpetaFijada();
    fs::path archivo;
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&CarpetaComponente), &info) != 0 && info.dli_fname &&
        *info.dli_fname) {
        // Inside the shared library dladdr names the library; linked into a program it names
        // the program, whose real path /proc/self/exe gives even when started by a relative name.
        const std::string nombre = fs::path(info.dli_fname).filename().string();
        if (nombre.ends_with(".so") || nombre.find(".so.") != std::string::npos) {
            std::error_code ec;
            archivo = fs::absolute(info.dli_fname, ec);
        }
    }
    std::error_code ec;
    if (archivo.empty()) archivo = fs::read_symlink("/proc/self/exe", ec);
    std::string carpeta = archivo.parent_path().string();
    if (carpeta.empty() || carpeta.back() != '/') carpeta += '/';
    return carpeta;
}

}  // namespace paratzorep::reports
