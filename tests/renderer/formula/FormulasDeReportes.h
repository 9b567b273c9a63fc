// Every selection formula, sort field and request formula that the report forms
// build, with their placeholders filled the way a form fills them.
#pragma once

#include <string>
#include <vector>

namespace paratzorep::renderer::formula::prueba {

inline const std::vector<std::string>& seleccionesDeReportes() {
    static const std::vector<std::string> v = {
        // user activity log
        "'Alta' in {bitacorausuarios.Accion}",
        "'Alta' in {bitacorausuarios.Accion} or 'Baja' in {bitacorausuarios.Accion}",
        // account statements (customers and suppliers)
        "{edoctacli.IdMoneda}=1 and {edoctacli.Fecha}>=Date(2024,3,5) and "
        "{edoctacli.Fecha}<=Date(2024,12,31) and not ('BONIFICACION POR CANCELACION' in "
        "{edoctacli.Concepto}) and not ('DEVOLUCION DEL DINERO POR CANC.' in {edoctacli.Concepto}) "
        "and {edoctacli.Clave}>='C001' and {edoctacli.Clave}<='C999'",
        "{edoctaprov.IdMoneda}=2 and {edoctaprov.Clave}='P01'",
        // payments
        "{edoctacli.CantidadPago}>0 and not ('BONIFICACION POR CANCELACION' in "
        "{edoctacli.Concepto}) "
        "and not ('DEVOLUCION CTES. ' in {edoctacli.Concepto}) and not ('ABONO AUTOMATICO A CXC' "
        "in "
        "{edoctacli.Concepto}) and {edoctacli.IdMoneda}=1 and {edoctacli.Fecha}>=Date(2024,1,1) "
        "and "
        "{edoctacli.Fecha}<=Date(2024,1,31) and {edoctacli.FechaDePago}>=Date(2024,1,1) and "
        "{edoctacli.FechaDePago}<=Date(2024,2,29) and {edoctacli.NotaCredito}=0 and "
        "{edoctacli.Clave}='C001' and {edoctacli.Usuario}='ADMIN' and {anexopagosctes.Factura}<>0",
        "{edoctacli.CantidadPago}>0 and {anexopagosctes.Remision}<>0 and {edoctacli.Clave}=''",
        "{edoctaprov.CantidadPago}>0 and not ('DEVOLUCION PROV. ' in {edoctaprov.Concepto}) and "
        "{edoctaprov.IdMoneda}=1 and {edoctaprov.Fecha}>=Date(2024,3,5) and "
        "{edoctaprov.Fecha}<=Date(2024,3,6) and {edoctaprov.Clave}>='A' and "
        "{edoctaprov.Clave}<='Z'",
        // charges
        "{edoctacli.CantidadCargo}>0 and {edoctacli.IdMoneda}=1 and "
        "{edoctacli.Fecha}>=Date(2024,3,5) "
        "and {edoctacli.Fecha}<=Date(2024,3,31) and {edoctacli.Clave}='C001'",
        // returns
        "{devolucionctes.Fecha}>=Date(2024,3,5) and {devolucionctes.Fecha}<=Date(2024,3,31) and "
        "{devolucionctes.Cliente}>='C001' and {devolucionctes.Cliente}<='C010' and "
        "{devolucionctes.NotasCredito}=0 and {devolucionctesdet.Producto}='P-100' and "
        "{productos.Linea}=3 and {productos.SubLinea}=4 and {productos.Marca}=5",
        "{devolucionprov.Fecha}>=Date(2024,3,5) and {devolucionprov.Proveedor}='PR1' and "
        "{devolucionprovdet.Producto}='X'",
        // product balances by customer
        "{saldosprodsctes.Cliente}='C001'",
        "{saldosprodsctes.Cliente}>='C001' and {saldosprodsctes.Cliente}<='C002'",
        // meat cuts
        "{movcortes.Fecha}>=Date(2024,3,5) and {movcortes.Fecha}<=Date(2024,3,6) and "
        "{movcortes.IdCorte}=7 and {movcortes.Usuario}='JUAN'",
        // inventory adjustments
        "{ajustes.Fecha}>=Date(2024,3,5) and {ajustes.Fecha}<=Date(2024,3,6) and "
        "{ajustes.Clave}='P-1' and {ajustes.Usuario}='ANA' and {productos.Linea}=2 and "
        "{ajustes.Ajuste}=15",
        "{ajustes.Ajuste}=15",
        // goods entries
        "{entradas.Fecha}>=Date(2024,3,5) and {entradas.Fecha}<=Date(2024,3,6) and "
        "{entradasdetalle.Producto}='P-1' and 'ABC' in {entradasdetalle.Descrip} and "
        "{entradas.Destino}='S01' and {entradas.Usuario}='ANA' and {entradas.Afectada}=1",
        "{entradas.Afectada}=0",
        // transfers
        "{traspasos.Fecha}>=Date(2024,3,5) and {traspasos.Fecha}<=Date(2024,3,6) and "
        "{traspasosdetalle.Producto}='P-1' and 'tornillo' in {traspasosdetalle.Descrip} and "
        "{traspasos.Destino}='S02' and {traspasos.Usuario}='ANA' and {traspasos.Cancelado}=0 and "
        "{traspasos.Serie}='A'",
        // product losses
        "{perdidas.Fecha}>=Date(2024,3,5) and {perdidas.Fecha}<=Date(2024,3,6) and "
        "{perdidas.Usuario}<='MARIO' and {perdidasdetalle.Producto}='P-1' and {productos.Linea}=1 "
        "and {productos.SubLinea}=2 and {productos.Marca}=3",
        // product statements
        "{edoctaspc.Fecha}>=Date(2024,3,5) and {edoctaspc.Fecha}<=Date(2024,3,6) and "
        "{edoctaspc.Cliente}>='C001' and {edoctaspc.Cliente}<='C002' and "
        "{edoctaspc.Producto}='P-1'",
        // metal separation
        "{separacionmet.Fecha}>=Date(2024,3,5) and {separacionmet.Fecha}<=Date(2024,3,6) and ( "
        "{separacionmet.MetalOrigen}='X1' OR {separacionmetdetalle.MetalDestino}='X1') and "
        "{separacionmet.Usuario}='ANA'",
        "( {separacionmet.MetalOrigen}='X1' OR {separacionmetdetalle.MetalDestino}='X1')",
    };
    return v;
}

inline const std::vector<std::string>& camposOrdenDeReportes() {
    static const std::vector<std::string> v = {
        "+{edoctacli.Fecha}",         "+{edoctacli.CantidadPago}",  "+{edoctacli.Concepto}",
        "+{edoctacli.Clave}",         "+{edoctacli.CantidadCargo}", "+{edoctaprov.Fecha}",
        "+{edoctaprov.CantidadPago}", "+{edoctaprov.Concepto}",     "+{edoctaprov.Clave}",
        "+{ajustes.Clave}",           "+{compras3.Articulo}",       "+{compras3.Linea}",
        "+{compras3.Descripcion}",    "-{compras3.Cantidad}",       "+{compras3.Cantidad}",
    };
    return v;
}

inline const std::vector<std::string>& asignacionesDeReportes() {
    static const std::vector<std::string> v = {
        "ENCABEZADO='Antigüedad de saldos de clientes al día: 05/mar/2024'",
        "TEXTOLLAVE='Compra ND'",
        "TEXTOLLAVE='Movto.'",
        "MONEDA='Al día: 5 de Marzo de 2024. Moneda: USD'",
        "VENDEDOR='Vendedor: JUAN PÉREZ'",
        "Titulo='Del 1 de Marzo de 2024 al 31 de Marzo de 2024'",
        "ENCABEZADO='Reporte al día: 05/mar/2024'",
    };
    return v;
}

}  // namespace paratzorep::renderer::formula::prueba
