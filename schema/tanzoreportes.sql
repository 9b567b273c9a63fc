-- Reports work database "tanzoreportes": one EMPTY model table per report work
-- table layout. A report clones its model under a free name (tbltemp<n>),
-- fills the clone and drops it; the models themselves never hold rows.
-- Tables whose rows a report updates by key carry an auto-increment Id.
--
-- Work tables are scratch: filled once, read once in report order, dropped. They
-- are Aria without transactions (ENGINE=Aria TRANSACTIONAL=0): no undo or redo
-- log, so a fill of 200,000 rows costs about half of what it costs in InnoDB, and
-- a drop is quick. Aria indexes do not end with the primary key by themselves: a
-- model whose report reads it in a known order carries an index on the report's
-- order (groups, then sort fields) ending with Id, so that the renderer reads it
-- in blocks straight from that index instead of sorting it.

-- User activity log (plain texts, decoded from the company table).
CREATE TABLE bitacorausuarios (
    Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Usuario VARCHAR(60) NOT NULL DEFAULT '',
    Accion VARCHAR(500) NOT NULL DEFAULT '',
    Version VARCHAR(60) NOT NULL DEFAULT '',
    Equipo VARCHAR(60) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Orden (Fecha, Hora, Id)
) ENGINE=Aria TRANSACTIONAL=0;

-- Aging of balances, customers and suppliers.
CREATE TABLE adsmovtos (
    Id INT NOT NULL AUTO_INCREMENT,
    clave VARCHAR(15) NOT NULL DEFAULT '',
    Tipo CHAR(1) NOT NULL DEFAULT '',
    Llave VARCHAR(30) NOT NULL DEFAULT '',
    Importe DOUBLE NOT NULL DEFAULT 0,
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    DiasDeVencido INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Vencimiento DATE NOT NULL DEFAULT '0000-00-00',
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Pagado DOUBLE NOT NULL DEFAULT 0,
    IdCxC INT NOT NULL DEFAULT 0,
    IdChequesPF INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Orden (clave, Vencimiento, Id)
) ENGINE=Aria TRANSACTIONAL=0;

-- Receivables listing. The document's Id may be copied into Id (at-a-date
-- mode), and invoices, delivery notes and layaways may share ids, so Id is
-- not unique here; Renglon numbers the rows for the report's order.
CREATE TABLE cxc (
    Id INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Cargo VARCHAR(30) NOT NULL DEFAULT '',
    Remision VARCHAR(30) NOT NULL DEFAULT '',
    Factura VARCHAR(30) NOT NULL DEFAULT '',
    Apartado VARCHAR(30) NOT NULL DEFAULT '',
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Total DOUBLE NOT NULL DEFAULT 0,
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Vence DATE NOT NULL DEFAULT '0000-00-00',
    IdCargo INT NOT NULL DEFAULT 0,
    IdRemision INT NOT NULL DEFAULT 0,
    IdFactura INT NOT NULL DEFAULT 0,
    IdApartado INT NOT NULL DEFAULT 0,
    Renglon INT NOT NULL AUTO_INCREMENT,
    PRIMARY KEY (Renglon),
    KEY Id (Id),
    KEY Orden (Cliente, Vence, Fecha, Renglon)
) ENGINE=Aria TRANSACTIONAL=0;

-- Payables listing.
CREATE TABLE cxp (
    Id INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Cargo VARCHAR(30) NOT NULL DEFAULT '',
    Compra VARCHAR(30) NOT NULL DEFAULT '',
    Total DOUBLE NOT NULL DEFAULT 0,
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    Proveedor VARCHAR(15) NOT NULL DEFAULT '',
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Vence DATE NOT NULL DEFAULT '0000-00-00',
    IdCargo INT NOT NULL DEFAULT 0,
    Renglon INT NOT NULL AUTO_INCREMENT,
    PRIMARY KEY (Renglon),
    KEY Id (Id),
    KEY Orden (Proveedor, Vence, Fecha, Renglon)
) ENGINE=Aria TRANSACTIONAL=0;

-- Per-product summaries (goods entries, transfers, purchases): one row per
-- Articulo, raised by key.
CREATE TABLE compras3 (
    Id INT NOT NULL AUTO_INCREMENT,
    Articulo VARCHAR(20) NOT NULL DEFAULT '',
    Descripcion VARCHAR(150) NOT NULL DEFAULT '',
    Linea VARCHAR(60) NOT NULL DEFAULT '',
    Proveedor VARCHAR(15) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Precio DOUBLE NOT NULL DEFAULT 0,
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Articulo (Articulo)
) ENGINE=Aria TRANSACTIONAL=0;

-- Product rotation at a cut-off date. Stock, cost and last-purchase columns
-- stay NULL for a product without movements or purchases; IdKardex is the
-- warehouse history row that the stock and costs come from.
CREATE TABLE rotacionprods (
    Id INT NOT NULL AUTO_INCREMENT,
    ClaveProd VARCHAR(20) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    ClaveAlterna VARCHAR(30) NOT NULL DEFAULT '',
    Costo DOUBLE NULL DEFAULT NULL,
    CostoProm DOUBLE NULL DEFAULT NULL,
    ExistenciaAlDia DOUBLE NULL DEFAULT NULL,
    VentasA30 DOUBLE NOT NULL DEFAULT 0,
    VentasA60 DOUBLE NOT NULL DEFAULT 0,
    VentasA90 DOUBLE NOT NULL DEFAULT 0,
    VentasAmas90 DOUBLE NOT NULL DEFAULT 0,
    FechaCom DATE NULL DEFAULT NULL,
    CantCom DOUBLE NULL DEFAULT NULL,
    DiasAlmacen INT NULL DEFAULT NULL,
    IdKardex INT NULL DEFAULT NULL,
    PRIMARY KEY (Id),
    KEY ClaveProd (ClaveProd)
) ENGINE=Aria TRANSACTIONAL=0;

-- Profit by day and seller; Resumen 1 marks a seller's summary row.
CREATE TABLE utilidadxdias (
    Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    VendedorCve VARCHAR(15) NOT NULL DEFAULT '',
    VendedorNom VARCHAR(80) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Devueltos DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Total2 DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    Total3 DOUBLE NOT NULL DEFAULT 0,
    Porcentaje DOUBLE NOT NULL DEFAULT 0,
    Devoluciones DOUBLE NOT NULL DEFAULT 0,
    NotasCredito DOUBLE NOT NULL DEFAULT 0,
    Resumen SMALLINT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Fecha (Fecha, VendedorCve),
    KEY VendedorCve (VendedorCve)
) ENGINE=Aria TRANSACTIONAL=0;

-- Profit by seller.
CREATE TABLE utilidadxvendedor (
    Id INT NOT NULL AUTO_INCREMENT,
    Vendedor VARCHAR(15) NOT NULL DEFAULT '',
    Nombre VARCHAR(80) NOT NULL DEFAULT '',
    Ventas DOUBLE NOT NULL DEFAULT 0,
    AlCosto DOUBLE NOT NULL DEFAULT 0,
    AlCostoProm DOUBLE NOT NULL DEFAULT 0,
    NumeroVentas INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Vendedor (Vendedor)
) ENGINE=Aria TRANSACTIONAL=0;

-- Commissions by line and price number: one row per document ...
CREATE TABLE comisxventas (
    Id INT NOT NULL AUTO_INCREMENT,
    Documento VARCHAR(20) NOT NULL DEFAULT '',
    IdVenta INT NOT NULL DEFAULT 0,
    clave VARCHAR(15) NOT NULL DEFAULT '',
    Nombre VARCHAR(80) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Numero INT NOT NULL DEFAULT 0,
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Pagado DOUBLE NOT NULL DEFAULT 0,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Monto DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Documento (Documento, IdVenta),
    KEY clave (clave)
) ENGINE=Aria TRANSACTIONAL=0;

-- ... and one row per document and product (IdComision = comisxventas.Id).
CREATE TABLE comisxventasdetalle (
    Id INT NOT NULL AUTO_INCREMENT,
    IdComision INT NOT NULL DEFAULT 0,
    Documento VARCHAR(20) NOT NULL DEFAULT '',
    IdVenta INT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    DESCripcion VARCHAR(150) NOT NULL DEFAULT '',
    Precio DOUBLE NOT NULL DEFAULT 0,
    ComisionPorcen DOUBLE NOT NULL DEFAULT 0,
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    ComisionMonto DOUBLE NOT NULL DEFAULT 0,
    Importe DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY IdComision (IdComision, Producto),
    KEY Documento (Documento, IdVenta, Producto)
) ENGINE=Aria TRANSACTIONAL=0;

-- Balances at a date.
CREATE TABLE saldosalafecha (
    Id INT NOT NULL AUTO_INCREMENT,
    clave VARCHAR(15) NOT NULL DEFAULT '',
    Nombre VARCHAR(100) NOT NULL DEFAULT '',
    Cargos DOUBLE NOT NULL DEFAULT 0,
    Abonos DOUBLE NOT NULL DEFAULT 0,
    SaldoActual DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY clave (clave)
) ENGINE=Aria TRANSACTIONAL=0;

-- Receipts collected.
CREATE TABLE recibos (
    Id INT NOT NULL AUTO_INCREMENT,
    Recibo INT NOT NULL DEFAULT 0,
    IdPago INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Nombre VARCHAR(100) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Orden (Recibo, Id)
) ENGINE=Aria TRANSACTIONAL=0;

-- Customer payments of one seller: a copy of the statement rows (same layout
-- as the company's edoctacli).
CREATE TABLE edoctacli (
    Id INT NOT NULL AUTO_INCREMENT,
    Folio INT NOT NULL DEFAULT 0,
    Foliote INT NOT NULL DEFAULT 0,
    Movimiento INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    FechaDePago DATE NOT NULL DEFAULT '0000-00-00',
    Clave VARCHAR(15) NOT NULL DEFAULT '',
    CantidadCargo DOUBLE NOT NULL DEFAULT 0,
    CantidadPago DOUBLE NOT NULL DEFAULT 0,
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    Concepto2 VARCHAR(150) NOT NULL DEFAULT '',
    Concepto3 VARCHAR(150) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    MontoTotal DOUBLE NOT NULL DEFAULT 0,
    MonedaMT SMALLINT NOT NULL DEFAULT 1,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    NotaCredito INT NOT NULL DEFAULT 0,
    SaldoAnterior DOUBLE NOT NULL DEFAULT 0,
    SaldoActual DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Fecha (Fecha),
    KEY Folio (Folio),
    KEY Clave (Clave, IdMoneda, Fecha, Id)
) ENGINE=Aria TRANSACTIONAL=0;

-- Means-of-payment breakdown of customer payments; Tipo holds the label
-- ("EFECTIVO", "CHEQUE DE CASA", "OTROS BANCOS").
CREATE TABLE cheques (
    Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Tipo VARCHAR(30) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Clave VARCHAR(15) NOT NULL DEFAULT '',
    Folio INT NOT NULL DEFAULT 0,
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Fecha (Fecha)
) ENGINE=Aria TRANSACTIONAL=0;

-- Missing or out-of-range receipts.
CREATE TABLE recibosfaltantes (
    Id INT NOT NULL AUTO_INCREMENT,
    Recibo INT NOT NULL DEFAULT 0,
    IdPago INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Motivo VARCHAR(150) NOT NULL DEFAULT '',
    PRIMARY KEY (Id)
) ENGINE=Aria TRANSACTIONAL=0;

-- Cancelled sales: Factura or Remision holds the number, by kind.
CREATE TABLE ventascanceladas (
    Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Factura INT NOT NULL DEFAULT 0,
    Remision INT NOT NULL DEFAULT 0,
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Nombre VARCHAR(100) NOT NULL DEFAULT '',
    Vendedor VARCHAR(15) NOT NULL DEFAULT '',
    Ventas DOUBLE NOT NULL DEFAULT 0,
    AlCosto DOUBLE NOT NULL DEFAULT 0,
    AlCostoProm DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Fecha (Fecha)
) ENGINE=Aria TRANSACTIONAL=0;
