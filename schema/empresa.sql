-- Company database ("datos1" and every other company): accounts, statements,
-- ledgers, sales and purchase documents, inventory movements, catalogues,
-- configuration and the template store. The loader creates the database and
-- runs this file inside it, so no database name appears here.
--
-- Conventions: money and quantities DOUBLE; dates DATE NOT NULL DEFAULT
-- '0000-00-00' (the reports compare against the zero date); counters and flags
-- SMALLINT/INT; texts stored with ENCODE are BLOB. Keys of customers, suppliers,
-- sellers and products are texts. Index names that the online-movements engine
-- drops on the central copy (cxc: Clave, Tipo; edoctacli: ID, Fecha, Folio;
-- facturas and remisiones: Factura) are kept with those names.

-- ---------------------------------------------------------------------------
-- Catalogues
-- ---------------------------------------------------------------------------

CREATE TABLE sucursales (
    Clave VARCHAR(10) NOT NULL,
    Nombre VARCHAR(80) NOT NULL DEFAULT '',
    Direccion VARCHAR(120) NOT NULL DEFAULT '',
    Ciudad VARCHAR(60) NOT NULL DEFAULT '',
    Telefono VARCHAR(30) NOT NULL DEFAULT '',
    PRIMARY KEY (Clave)
) ENGINE=InnoDB;

CREATE TABLE lineas (
    Id INT NOT NULL AUTO_INCREMENT,
    Linea VARCHAR(60) NOT NULL DEFAULT '',
    Comision DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Linea (Linea)
) ENGINE=InnoDB;

CREATE TABLE sublineas (
    Id INT NOT NULL AUTO_INCREMENT,
    IdLinea INT NOT NULL DEFAULT 0,
    SubLinea VARCHAR(60) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY IdLinea (IdLinea, SubLinea)
) ENGINE=InnoDB;

CREATE TABLE marcas (
    Id INT NOT NULL AUTO_INCREMENT,
    Marca VARCHAR(60) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Marca (Marca)
) ENGINE=InnoDB;

CREATE TABLE monedas (
    Id SMALLINT NOT NULL,
    Moneda VARCHAR(40) NOT NULL DEFAULT '',
    Abreviacion VARCHAR(10) NOT NULL DEFAULT '',
    Simbolo VARCHAR(5) NOT NULL DEFAULT '',
    Paridad DOUBLE NOT NULL DEFAULT 1,
    PRIMARY KEY (Id),
    KEY Abreviacion (Abreviacion)
) ENGINE=InnoDB;

CREATE TABLE vendedores (
    Clave VARCHAR(15) NOT NULL,
    Nombre VARCHAR(80) NOT NULL DEFAULT '',
    Email VARCHAR(100) NOT NULL DEFAULT '',
    Telefono VARCHAR(30) NOT NULL DEFAULT '',
    Comision DOUBLE NOT NULL DEFAULT 0,
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Activo SMALLINT NOT NULL DEFAULT 1,
    PRIMARY KEY (Clave)
) ENGINE=InnoDB;

CREATE TABLE clasificactes (
    Id INT NOT NULL AUTO_INCREMENT,
    Clasificacion VARCHAR(40) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Clasificacion (Clasificacion)
) ENGINE=InnoDB;

CREATE TABLE clasificaprov (
    Id INT NOT NULL AUTO_INCREMENT,
    Clasificacion VARCHAR(40) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Clasificacion (Clasificacion)
) ENGINE=InnoDB;

CREATE TABLE clientes (
    Id INT NOT NULL AUTO_INCREMENT,
    Clave VARCHAR(15) NOT NULL,
    Nombre VARCHAR(100) NOT NULL DEFAULT '',
    RFC VARCHAR(15) NOT NULL DEFAULT '',
    Direccion VARCHAR(120) NOT NULL DEFAULT '',
    Colonia VARCHAR(60) NOT NULL DEFAULT '',
    Ciudad VARCHAR(60) NOT NULL DEFAULT '',
    CP VARCHAR(10) NOT NULL DEFAULT '',
    Telefono VARCHAR(30) NOT NULL DEFAULT '',
    Email VARCHAR(100) NOT NULL DEFAULT '',
    Clasificacion VARCHAR(40) NOT NULL DEFAULT '',
    Vendedor VARCHAR(15) NOT NULL DEFAULT '',
    LimiteCredito DOUBLE NOT NULL DEFAULT 0,
    DiasCredito SMALLINT NOT NULL DEFAULT 0,
    NumeroDePrecio SMALLINT NOT NULL DEFAULT 1,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    SusPuntos DOUBLE NOT NULL DEFAULT 0,
    UltPago DATE NOT NULL DEFAULT '0000-00-00',
    FechaAlta DATE NOT NULL DEFAULT '0000-00-00',
    Bloqueado SMALLINT NOT NULL DEFAULT 0,
    PRIMARY KEY (Clave),
    UNIQUE KEY Id (Id),
    KEY Nombre (Nombre),
    KEY Clasificacion (Clasificacion),
    KEY Vendedor (Vendedor)
) ENGINE=InnoDB;

CREATE TABLE proveedores (
    Id INT NOT NULL AUTO_INCREMENT,
    Clave VARCHAR(15) NOT NULL,
    Nombre VARCHAR(100) NOT NULL DEFAULT '',
    RFC VARCHAR(15) NOT NULL DEFAULT '',
    Direccion VARCHAR(120) NOT NULL DEFAULT '',
    Ciudad VARCHAR(60) NOT NULL DEFAULT '',
    Telefono VARCHAR(30) NOT NULL DEFAULT '',
    Email VARCHAR(100) NOT NULL DEFAULT '',
    Contacto VARCHAR(80) NOT NULL DEFAULT '',
    Clasificacion VARCHAR(40) NOT NULL DEFAULT '',
    DiasCredito SMALLINT NOT NULL DEFAULT 0,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    UltPago DATE NOT NULL DEFAULT '0000-00-00',
    PRIMARY KEY (Clave),
    UNIQUE KEY Id (Id),
    KEY Nombre (Nombre),
    KEY Clasificacion (Clasificacion)
) ENGINE=InnoDB;

-- Products. Precio1..Precio5, Desc1..Desc5 and ComisionPrecio1..ComisionPrecio5
-- follow the price lists (configura: Precios = 5); NumeroDePrecio is the price
-- list the product is sold at by default.
CREATE TABLE productos (
    Clave VARCHAR(20) NOT NULL,
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Unidad VARCHAR(10) NOT NULL DEFAULT '',
    Linea INT NOT NULL DEFAULT 0,
    SubLinea INT NOT NULL DEFAULT 0,
    Marca INT NOT NULL DEFAULT 0,
    Proveedor1 VARCHAR(15) NOT NULL DEFAULT '',
    Proveedor2 VARCHAR(15) NOT NULL DEFAULT '',
    Servicio SMALLINT NOT NULL DEFAULT 0,
    Existencia DOUBLE NOT NULL DEFAULT 0,
    Minimo DOUBLE NOT NULL DEFAULT 0,
    Maximo DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    CostoProm DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    Precio1 DOUBLE NOT NULL DEFAULT 0,
    Precio2 DOUBLE NOT NULL DEFAULT 0,
    Precio3 DOUBLE NOT NULL DEFAULT 0,
    Precio4 DOUBLE NOT NULL DEFAULT 0,
    Precio5 DOUBLE NOT NULL DEFAULT 0,
    Desc1 DOUBLE NOT NULL DEFAULT 0,
    Desc2 DOUBLE NOT NULL DEFAULT 0,
    Desc3 DOUBLE NOT NULL DEFAULT 0,
    Desc4 DOUBLE NOT NULL DEFAULT 0,
    Desc5 DOUBLE NOT NULL DEFAULT 0,
    ComisionPrecio DOUBLE NOT NULL DEFAULT 0,
    ComisionPrecio1 DOUBLE NOT NULL DEFAULT 0,
    ComisionPrecio2 DOUBLE NOT NULL DEFAULT 0,
    ComisionPrecio3 DOUBLE NOT NULL DEFAULT 0,
    ComisionPrecio4 DOUBLE NOT NULL DEFAULT 0,
    ComisionPrecio5 DOUBLE NOT NULL DEFAULT 0,
    NumeroDePrecio SMALLINT NOT NULL DEFAULT 1,
    Bloqueado SMALLINT NOT NULL DEFAULT 0,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    FechaAlta DATE NOT NULL DEFAULT '0000-00-00',
    PRIMARY KEY (Clave),
    KEY Descrip (Descrip),
    KEY Linea (Linea, SubLinea),
    KEY Marca (Marca),
    KEY Proveedor1 (Proveedor1),
    KEY Proveedor2 (Proveedor2)
) ENGINE=InnoDB;

CREATE TABLE clavesalternas (
    Id INT NOT NULL AUTO_INCREMENT,
    ClaveProducto VARCHAR(20) NOT NULL DEFAULT '',
    ClaveAlterna VARCHAR(30) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY ClaveProducto (ClaveProducto, ClaveAlterna),
    KEY ClaveAlterna (ClaveAlterna)
) ENGINE=InnoDB;

-- ---------------------------------------------------------------------------
-- Balances, statements and ledgers
-- ---------------------------------------------------------------------------

CREATE TABLE saldoscli (
    Clave VARCHAR(15) NOT NULL,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Clave, IdMoneda)
) ENGINE=InnoDB;

CREATE TABLE saldospro (
    Clave VARCHAR(15) NOT NULL,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Clave, IdMoneda)
) ENGINE=InnoDB;

-- Customer statement: one row per movement. Rows of one account and currency
-- chain by Fecha, then Id: SaldoAnterior is the previous row's SaldoActual.
-- Folio numbers the movement (ledger charges point at it; anexopagosctes
-- FolioDelPago matches it). IdMoneda is the movement's currency; Moneda repeats
-- it for the readers that use that name; MonedaMT is the currency of MontoTotal.
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
    KEY ID (Id, Clave),
    KEY Fecha (Fecha),
    KEY Folio (Folio),
    KEY Clave (Clave, IdMoneda, Fecha, Id),
    KEY FechaDePago (FechaDePago)
) ENGINE=InnoDB;

CREATE TABLE edoctaprov (
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
) ENGINE=InnoDB;

-- Receivables ledger: one row per open document. Tipo "F" invoice, "R"
-- delivery note, "A" layaway (Numero = the document's Id), "C" charge (Numero =
-- the statement row's Folio).
CREATE TABLE cxc (
    Id INT NOT NULL AUTO_INCREMENT,
    Clave VARCHAR(15) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Vencimiento DATE NOT NULL DEFAULT '0000-00-00',
    Tipo CHAR(1) NOT NULL DEFAULT '',
    Numero INT NOT NULL DEFAULT 0,
    NumPago SMALLINT NOT NULL DEFAULT 1,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    PRIMARY KEY (Id),
    KEY Clave (Clave),
    KEY Tipo (Tipo, Numero),
    KEY Vencimiento (Vencimiento)
) ENGINE=InnoDB;

-- Payables ledger. Tipo "M" purchase (compras), "N" purchase without invoice
-- (comprasnd), Numero = the purchase's Compra; "C" charge, Numero = Folio.
CREATE TABLE cxp (
    Id INT NOT NULL AUTO_INCREMENT,
    Clave VARCHAR(15) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Vencimiento DATE NOT NULL DEFAULT '0000-00-00',
    Tipo CHAR(1) NOT NULL DEFAULT '',
    Numero INT NOT NULL DEFAULT 0,
    NumPago SMALLINT NOT NULL DEFAULT 1,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    PRIMARY KEY (Id),
    KEY Clave (Clave),
    KEY Tipo (Tipo, Numero),
    KEY Vencimiento (Vencimiento)
) ENGINE=InnoDB;

-- Payment applications: which documents a customer payment (FolioDelPago =
-- edoctacli.Folio) settled. The settled document's Id goes under Factura,
-- Remision or Apartado (0 for the other kinds); a charge's statement Folio
-- under Cargo. IdFactura, IdRemision and IdApartado repeat those ids for the
-- readers that name them so. Efectivo, ChequeCuenta (own-bank cheque) and
-- ChequeOtra (other banks) split Cantidad by means of payment; Saldo is the
-- document's balance after the application.
CREATE TABLE anexopagosctes (
    Id INT NOT NULL AUTO_INCREMENT,
    FolioDelPago INT NOT NULL DEFAULT 0,
    Tipo CHAR(1) NOT NULL DEFAULT '',
    Factura INT NOT NULL DEFAULT 0,
    Remision INT NOT NULL DEFAULT 0,
    Apartado INT NOT NULL DEFAULT 0,
    Cargo INT NOT NULL DEFAULT 0,
    IdFactura INT NOT NULL DEFAULT 0,
    IdRemision INT NOT NULL DEFAULT 0,
    IdApartado INT NOT NULL DEFAULT 0,
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    CantidadReal DOUBLE NOT NULL DEFAULT 0,
    Efectivo DOUBLE NOT NULL DEFAULT 0,
    ChequeCuenta DOUBLE NOT NULL DEFAULT 0,
    ChequeOtra DOUBLE NOT NULL DEFAULT 0,
    Banco VARCHAR(40) NOT NULL DEFAULT '',
    NumCheque VARCHAR(20) NOT NULL DEFAULT '',
    Saldo DOUBLE NOT NULL DEFAULT 0,
    FechaReal DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    FechaAplicacion DATE NOT NULL DEFAULT '0000-00-00',
    PRIMARY KEY (Id),
    KEY FolioDelPago (FolioDelPago),
    KEY Factura (Factura),
    KEY Remision (Remision),
    KEY Apartado (Apartado),
    KEY Cargo (Cargo),
    KEY IdFactura (IdFactura),
    KEY IdRemision (IdRemision),
    KEY IdApartado (IdApartado),
    KEY FechaAplicacion (FechaAplicacion),
    KEY FechaReal (FechaReal)
) ENGINE=InnoDB;

-- Payments that other companies of the chain took for this company's documents and
-- that the online-movements engine applied here from the central database: IdSEL is the
-- payment's Id there (one row each, so a payment is never applied twice), ClaveEmpresa the
-- company that took it, Folio and IdEdoCta the statement row written here.
CREATE TABLE pagossel (
    IdSEL INT NOT NULL,
    ClaveEmpresa VARCHAR(15) NOT NULL DEFAULT '',
    Folio INT NOT NULL DEFAULT 0,
    IdEdoCta INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    PRIMARY KEY (IdSEL),
    KEY Folio (Folio)
) ENGINE=InnoDB;

-- Numbered receipts for customer payments (IdPago = edoctacli.Id).
CREATE TABLE recibos (
    Id INT NOT NULL AUTO_INCREMENT,
    Recibo INT NOT NULL DEFAULT 0,
    IdPago INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Cancelado SMALLINT NOT NULL DEFAULT 0,
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Recibo (Recibo),
    KEY IdPago (IdPago),
    KEY Fecha (Fecha)
) ENGINE=InnoDB;

-- Post-dated cheques received from customers and the ledger rows they cover.
CREATE TABLE chequespf (
    IdCheque INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    FechaCobro DATE NOT NULL DEFAULT '0000-00-00',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Banco VARCHAR(40) NOT NULL DEFAULT '',
    NumCheque VARCHAR(20) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Cobrado SMALLINT NOT NULL DEFAULT 0,
    Cancelado SMALLINT NOT NULL DEFAULT 0,
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    PRIMARY KEY (IdCheque),
    KEY Cliente (Cliente),
    KEY FechaCobro (FechaCobro)
) ENGINE=InnoDB;

CREATE TABLE chequespfdetalle (
    Id INT NOT NULL AUTO_INCREMENT,
    IdCheque INT NOT NULL DEFAULT 0,
    IdCxC INT NOT NULL DEFAULT 0,
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY IdCheque (IdCheque),
    KEY IdCxC (IdCxC)
) ENGINE=InnoDB;

-- ---------------------------------------------------------------------------
-- Sales documents. Factura holds the document's number in every kind (the
-- reports read Serie + Factura); delivery notes repeat it in Remision and
-- layaways in Apartado. Moneda and IdMoneda both hold the currency's Id.
-- Retencion and RetencionIVA are stored with their sign. Importe is the
-- document's total; Pagado what has been paid; Saldo what is still open.
-- ---------------------------------------------------------------------------

CREATE TABLE facturas (
    Id INT NOT NULL AUTO_INCREMENT,
    Factura INT NOT NULL DEFAULT 0,
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Vendedor VARCHAR(15) NOT NULL DEFAULT '',
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    FechaCancelacion DATE NOT NULL DEFAULT '0000-00-00',
    Afectada SMALLINT NOT NULL DEFAULT 1,
    PdeV SMALLINT NOT NULL DEFAULT 0,
    Credito SMALLINT NOT NULL DEFAULT 0,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Paridad DOUBLE NOT NULL DEFAULT 1,
    Desc1 DOUBLE NOT NULL DEFAULT 0,
    Desc2 DOUBLE NOT NULL DEFAULT 0,
    Desc3 DOUBLE NOT NULL DEFAULT 0,
    Desc4 DOUBLE NOT NULL DEFAULT 0,
    Desc5 DOUBLE NOT NULL DEFAULT 0,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    ImpuestoAd DOUBLE NOT NULL DEFAULT 0,
    Cargo1Cantidad DOUBLE NOT NULL DEFAULT 0,
    Cargo2Cantidad DOUBLE NOT NULL DEFAULT 0,
    Cargo3Cantidad DOUBLE NOT NULL DEFAULT 0,
    Retencion DOUBLE NOT NULL DEFAULT 0,
    RetencionIVA DOUBLE NOT NULL DEFAULT 0,
    Importe DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Pagado DOUBLE NOT NULL DEFAULT 0,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Vence DATE NOT NULL DEFAULT '0000-00-00',
    UUID VARCHAR(40) NOT NULL DEFAULT '',
    Observaciones VARCHAR(200) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Factura (Serie, Factura),
    KEY Fecha (Fecha),
    KEY Cliente (Cliente),
    KEY Vendedor (Vendedor),
    KEY Saldo (Saldo)
) ENGINE=InnoDB;

-- Remision on an invoice line: the delivery note (its Id) the line was
-- invoiced from, 0 for none. IdKardex: the historicoalmacen row of the line.
CREATE TABLE facturasdetalle (
    Id INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descripcion VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Devueltos DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    PrecioNeto DOUBLE NOT NULL DEFAULT 0,
    Descuento DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    CostoPromedio DOUBLE NOT NULL DEFAULT 0,
    ParidadCompra DOUBLE NOT NULL DEFAULT 1,
    NumeroDePrecio SMALLINT NOT NULL DEFAULT 1,
    IdKardex INT NOT NULL DEFAULT 0,
    Remision INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id, Partida),
    KEY Producto (Producto),
    KEY Remision (Remision)
) ENGINE=InnoDB;

CREATE TABLE remisiones (
    Id INT NOT NULL AUTO_INCREMENT,
    Remision INT NOT NULL DEFAULT 0,
    Factura INT NOT NULL DEFAULT 0,
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Vendedor VARCHAR(15) NOT NULL DEFAULT '',
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    FechaCancelacion DATE NOT NULL DEFAULT '0000-00-00',
    Afectada SMALLINT NOT NULL DEFAULT 1,
    PdeV SMALLINT NOT NULL DEFAULT 0,
    Credito SMALLINT NOT NULL DEFAULT 0,
    Facturada SMALLINT NOT NULL DEFAULT 0,
    IdFactura INT NOT NULL DEFAULT 0,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Paridad DOUBLE NOT NULL DEFAULT 1,
    Desc1 DOUBLE NOT NULL DEFAULT 0,
    Desc2 DOUBLE NOT NULL DEFAULT 0,
    Desc3 DOUBLE NOT NULL DEFAULT 0,
    Desc4 DOUBLE NOT NULL DEFAULT 0,
    Desc5 DOUBLE NOT NULL DEFAULT 0,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    ImpuestoAd DOUBLE NOT NULL DEFAULT 0,
    Cargo1Cantidad DOUBLE NOT NULL DEFAULT 0,
    Cargo2Cantidad DOUBLE NOT NULL DEFAULT 0,
    Cargo3Cantidad DOUBLE NOT NULL DEFAULT 0,
    Retencion DOUBLE NOT NULL DEFAULT 0,
    RetencionIVA DOUBLE NOT NULL DEFAULT 0,
    Importe DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Pagado DOUBLE NOT NULL DEFAULT 0,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Vence DATE NOT NULL DEFAULT '0000-00-00',
    Observaciones VARCHAR(200) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Factura (Serie, Factura),
    KEY Remision (Remision),
    KEY Fecha (Fecha),
    KEY Cliente (Cliente),
    KEY Vendedor (Vendedor),
    KEY Saldo (Saldo)
) ENGINE=InnoDB;

CREATE TABLE remisionesdetalle (
    Id INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descripcion VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Devueltos DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    PrecioNeto DOUBLE NOT NULL DEFAULT 0,
    Descuento DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    CostoPromedio DOUBLE NOT NULL DEFAULT 0,
    ParidadCompra DOUBLE NOT NULL DEFAULT 1,
    NumeroDePrecio SMALLINT NOT NULL DEFAULT 1,
    IdKardex INT NOT NULL DEFAULT 0,
    Remision INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

CREATE TABLE apartados (
    Id INT NOT NULL AUTO_INCREMENT,
    Apartado INT NOT NULL DEFAULT 0,
    Factura INT NOT NULL DEFAULT 0,
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Vendedor VARCHAR(15) NOT NULL DEFAULT '',
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    FechaCancelacion DATE NOT NULL DEFAULT '0000-00-00',
    Afectada SMALLINT NOT NULL DEFAULT 0,
    PdeV SMALLINT NOT NULL DEFAULT 0,
    Entregado SMALLINT NOT NULL DEFAULT 0,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Paridad DOUBLE NOT NULL DEFAULT 1,
    Desc1 DOUBLE NOT NULL DEFAULT 0,
    Desc2 DOUBLE NOT NULL DEFAULT 0,
    Desc3 DOUBLE NOT NULL DEFAULT 0,
    Desc4 DOUBLE NOT NULL DEFAULT 0,
    Desc5 DOUBLE NOT NULL DEFAULT 0,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    ImpuestoAd DOUBLE NOT NULL DEFAULT 0,
    Cargo1Cantidad DOUBLE NOT NULL DEFAULT 0,
    Cargo2Cantidad DOUBLE NOT NULL DEFAULT 0,
    Cargo3Cantidad DOUBLE NOT NULL DEFAULT 0,
    Retencion DOUBLE NOT NULL DEFAULT 0,
    RetencionIVA DOUBLE NOT NULL DEFAULT 0,
    Importe DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Pagado DOUBLE NOT NULL DEFAULT 0,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Vence DATE NOT NULL DEFAULT '0000-00-00',
    Observaciones VARCHAR(200) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Factura (Serie, Factura),
    KEY Fecha (Fecha),
    KEY Cliente (Cliente),
    KEY Saldo (Saldo)
) ENGINE=InnoDB;

CREATE TABLE apartadosdetalle (
    Id INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descripcion VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Devueltos DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    PrecioNeto DOUBLE NOT NULL DEFAULT 0,
    Descuento DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    CostoPromedio DOUBLE NOT NULL DEFAULT 0,
    ParidadCompra DOUBLE NOT NULL DEFAULT 1,
    NumeroDePrecio SMALLINT NOT NULL DEFAULT 1,
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

-- Point-of-sale tickets. Ticket lines carry their own date.
CREATE TABLE tickets (
    Id INT NOT NULL AUTO_INCREMENT,
    Ticket INT NOT NULL DEFAULT 0,
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Caja SMALLINT NOT NULL DEFAULT 1,
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Vendedor VARCHAR(15) NOT NULL DEFAULT '',
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Efectivo DOUBLE NOT NULL DEFAULT 0,
    Cambio DOUBLE NOT NULL DEFAULT 0,
    Facturado SMALLINT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Ticket (Serie, Ticket),
    KEY Fecha (Fecha)
) ENGINE=InnoDB;

CREATE TABLE ticketsdetalle (
    Id INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descripcion VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    PrecioNeto DOUBLE NOT NULL DEFAULT 0,
    CostoPromedio DOUBLE NOT NULL DEFAULT 0,
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id, Partida),
    KEY Producto (Producto, Fecha),
    KEY Fecha (Fecha)
) ENGINE=InnoDB;

-- ---------------------------------------------------------------------------
-- Returns and credit notes
-- ---------------------------------------------------------------------------

-- Customer returns. Tipo "F"/"R" and Venta (the document's Id) name the sale
-- returned against; NotasCredito is the credit note that settled the return
-- (0 when none).
CREATE TABLE devolucionctes (
    DevolucionCtes INT NOT NULL AUTO_INCREMENT,
    Numero INT NOT NULL DEFAULT 0,
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Tipo CHAR(1) NOT NULL DEFAULT '',
    Venta INT NOT NULL DEFAULT 0,
    NotasCredito INT NOT NULL DEFAULT 0,
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    Paridad DOUBLE NOT NULL DEFAULT 1,
    Desc1 DOUBLE NOT NULL DEFAULT 0,
    Desc2 DOUBLE NOT NULL DEFAULT 0,
    Desc3 DOUBLE NOT NULL DEFAULT 0,
    Desc4 DOUBLE NOT NULL DEFAULT 0,
    Desc5 DOUBLE NOT NULL DEFAULT 0,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Motivo VARCHAR(150) NOT NULL DEFAULT '',
    PRIMARY KEY (DevolucionCtes),
    KEY Fecha (Fecha),
    KEY Cliente (Cliente),
    KEY Venta (Tipo, Venta)
) ENGINE=InnoDB;

-- PartidaVenta: the line (Partida) of the sale that the returned line undoes.
CREATE TABLE devolucionctesdet (
    DevolucionCtes INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descripcion VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    CostoPromedio DOUBLE NOT NULL DEFAULT 0,
    PartidaVenta SMALLINT NOT NULL DEFAULT 0,
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (DevolucionCtes, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

CREATE TABLE devolucionprov (
    DevolucionProv INT NOT NULL AUTO_INCREMENT,
    Numero INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Proveedor VARCHAR(15) NOT NULL DEFAULT '',
    Compra INT NOT NULL DEFAULT 0,
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Motivo VARCHAR(150) NOT NULL DEFAULT '',
    PRIMARY KEY (DevolucionProv),
    KEY Fecha (Fecha),
    KEY Proveedor (Proveedor)
) ENGINE=InnoDB;

CREATE TABLE devolucionprovdet (
    DevolucionProv INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descripcion VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (DevolucionProv, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

-- Credit notes. Devolucion is the customer return the note settles, 0 for a
-- note that is not a return (a discount or bonus).
CREATE TABLE notascredito (
    NotaCredito INT NOT NULL AUTO_INCREMENT,
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Devolucion INT NOT NULL DEFAULT 0,
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    Paridad DOUBLE NOT NULL DEFAULT 1,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    PRIMARY KEY (NotaCredito),
    KEY Fecha (Fecha),
    KEY Cliente (Cliente)
) ENGINE=InnoDB;

-- What a credit note applies to: Tipo "F"/"R" and Numero (the document's Id),
-- Cantidad the amount applied.
CREATE TABLE notascreditodetalle (
    NotaCredito INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Tipo CHAR(1) NOT NULL DEFAULT '',
    Numero INT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (NotaCredito, Partida),
    KEY Documento (Tipo, Numero)
) ENGINE=InnoDB;

-- ---------------------------------------------------------------------------
-- Purchases, entries, transfers, adjustments, losses
-- ---------------------------------------------------------------------------

-- Purchases with invoice. Factura is the supplier's document number.
CREATE TABLE compras (
    Compra INT NOT NULL AUTO_INCREMENT,
    Factura VARCHAR(20) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Proveedor VARCHAR(15) NOT NULL DEFAULT '',
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    Afectada SMALLINT NOT NULL DEFAULT 1,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Paridad DOUBLE NOT NULL DEFAULT 1,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    ImpuestoAd DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Pagado DOUBLE NOT NULL DEFAULT 0,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Vence DATE NOT NULL DEFAULT '0000-00-00',
    PRIMARY KEY (Compra),
    KEY Fecha (Fecha),
    KEY Proveedor (Proveedor)
) ENGINE=InnoDB;

CREATE TABLE comprasdetalle (
    Compra INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    Descuento DOUBLE NOT NULL DEFAULT 0,
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Compra, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

-- Purchases without invoice ("compras ND").
CREATE TABLE comprasnd (
    Compra INT NOT NULL AUTO_INCREMENT,
    Factura VARCHAR(20) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Proveedor VARCHAR(15) NOT NULL DEFAULT '',
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Cancelada SMALLINT NOT NULL DEFAULT 0,
    Afectada SMALLINT NOT NULL DEFAULT 1,
    Moneda SMALLINT NOT NULL DEFAULT 1,
    IdMoneda SMALLINT NOT NULL DEFAULT 1,
    Paridad DOUBLE NOT NULL DEFAULT 1,
    Subtotal DOUBLE NOT NULL DEFAULT 0,
    IVA DOUBLE NOT NULL DEFAULT 0,
    ImpuestoAd DOUBLE NOT NULL DEFAULT 0,
    Total DOUBLE NOT NULL DEFAULT 0,
    Pagado DOUBLE NOT NULL DEFAULT 0,
    Saldo DOUBLE NOT NULL DEFAULT 0,
    Vence DATE NOT NULL DEFAULT '0000-00-00',
    PRIMARY KEY (Compra),
    KEY Fecha (Fecha),
    KEY Proveedor (Proveedor)
) ENGINE=InnoDB;

CREATE TABLE comprasnddetalle (
    Compra INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    Descuento DOUBLE NOT NULL DEFAULT 0,
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Compra, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

-- Goods entries into a branch (Destino = sucursales.Clave). Afectada 1 when
-- applied to stock.
CREATE TABLE entradas (
    Entrada INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Destino VARCHAR(10) NOT NULL DEFAULT '',
    Proveedor VARCHAR(15) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Afectada SMALLINT NOT NULL DEFAULT 0,
    Observaciones VARCHAR(200) NOT NULL DEFAULT '',
    PRIMARY KEY (Entrada),
    KEY Fecha (Fecha),
    KEY Destino (Destino)
) ENGINE=InnoDB;

CREATE TABLE entradasdetalle (
    Entrada INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Entrada, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

-- Transfers between branches. Serie: the series name ("" when none; the
-- series are the sistema rows "TR-" + name).
CREATE TABLE traspasos (
    Traspaso INT NOT NULL AUTO_INCREMENT,
    Serie VARCHAR(10) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Origen VARCHAR(10) NOT NULL DEFAULT '',
    Destino VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Cancelado SMALLINT NOT NULL DEFAULT 0,
    Recibido SMALLINT NOT NULL DEFAULT 0,
    Observaciones VARCHAR(200) NOT NULL DEFAULT '',
    PRIMARY KEY (Traspaso),
    KEY Fecha (Fecha),
    KEY Serie (Serie),
    KEY Destino (Destino)
) ENGINE=InnoDB;

CREATE TABLE traspasosdetalle (
    Traspaso INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Traspaso, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

-- Inventory adjustments: one row per adjusted product line; Ajuste is the
-- adjustment document's folio.
CREATE TABLE ajustes (
    Id INT NOT NULL AUTO_INCREMENT,
    Ajuste INT NOT NULL DEFAULT 0,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Clave VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    ExistenciaAnterior DOUBLE NOT NULL DEFAULT 0,
    ExistenciaFisica DOUBLE NOT NULL DEFAULT 0,
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    Precio DOUBLE NOT NULL DEFAULT 0,
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Id),
    KEY Ajuste (Ajuste),
    KEY Fecha (Fecha),
    KEY Clave (Clave)
) ENGINE=InnoDB;

CREATE TABLE perdidas (
    Perdida INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    PRIMARY KEY (Perdida),
    KEY Fecha (Fecha)
) ENGINE=InnoDB;

CREATE TABLE perdidasdetalle (
    Perdida INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    Motivo VARCHAR(100) NOT NULL DEFAULT '',
    IdKardex INT NOT NULL DEFAULT 0,
    PRIMARY KEY (Perdida, Partida),
    KEY Producto (Producto)
) ENGINE=InnoDB;

-- Metal separations: one source metal product (MetalOrigen) separated into the
-- destination metals of the lines; Descrip as written on the document.
CREATE TABLE separacionmet (
    Separacion INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    MetalOrigen VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    Merma DOUBLE NOT NULL DEFAULT 0,
    Observaciones VARCHAR(200) NOT NULL DEFAULT '',
    PRIMARY KEY (Separacion),
    KEY Fecha (Fecha),
    KEY MetalOrigen (MetalOrigen)
) ENGINE=InnoDB;

CREATE TABLE separacionmetdetalle (
    Separacion INT NOT NULL DEFAULT 0,
    Partida SMALLINT NOT NULL DEFAULT 0,
    MetalDestino VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Separacion, Partida),
    KEY MetalDestino (MetalDestino)
) ENGINE=InnoDB;

-- Meat cuts: the catalogue of cuts and the recorded cutting movements.
CREATE TABLE cortes (
    Id INT NOT NULL AUTO_INCREMENT,
    Corte VARCHAR(60) NOT NULL DEFAULT '',
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Corte (Corte)
) ENGINE=InnoDB;

CREATE TABLE movcortes (
    Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    IdCorte INT NOT NULL DEFAULT 0,
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    ProductoOrigen VARCHAR(20) NOT NULL DEFAULT '',
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    PesoOrigen DOUBLE NOT NULL DEFAULT 0,
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Merma DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    Observaciones VARCHAR(200) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Fecha (Fecha),
    KEY IdCorte (IdCorte)
) ENGINE=InnoDB;

-- Warehouse history: one row per stock movement, Id increasing. Per product,
-- ExistenciaAnterior is the previous row's ExistenciaActual. ProductoId serves
-- the product rotation's "latest movement up to a date" (Producto=, Fecha<=,
-- ORDER BY Id DESC LIMIT 1) without sorting the product's rows.
CREATE TABLE historicoalmacen (
    Id INT NOT NULL AUTO_INCREMENT,
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Movimiento VARCHAR(30) NOT NULL DEFAULT '',
    Documento INT NOT NULL DEFAULT 0,
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    ExistenciaAnterior DOUBLE NOT NULL DEFAULT 0,
    ExistenciaActual DOUBLE NOT NULL DEFAULT 0,
    Costo DOUBLE NOT NULL DEFAULT 0,
    CostoPromedio DOUBLE NOT NULL DEFAULT 0,
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Producto (Producto, Fecha, Id),
    KEY ProductoId (Producto, Id),
    KEY Fecha (Fecha)
) ENGINE=InnoDB;

-- ---------------------------------------------------------------------------
-- Commissions, expenses, product balances per customer
-- ---------------------------------------------------------------------------

-- Sales brackets per seller: the highest Renglon whose CantVendida the seller's
-- total reaches gives the Comision percentage.
CREATE TABLE comisiones (
    Vendedor VARCHAR(15) NOT NULL,
    Renglon SMALLINT NOT NULL DEFAULT 0,
    CantVendida DOUBLE NOT NULL DEFAULT 0,
    Comision DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Vendedor, Renglon)
) ENGINE=InnoDB;

CREATE TABLE comisionesporlinea (
    Vendedor VARCHAR(15) NOT NULL,
    Linea INT NOT NULL DEFAULT 0,
    Comision DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Vendedor, Linea)
) ENGINE=InnoDB;

CREATE TABLE comisionesmasprecios (
    Vendedor VARCHAR(15) NOT NULL,
    NumPrecio SMALLINT NOT NULL DEFAULT 1,
    Comision DOUBLE NOT NULL DEFAULT 0,
    PRIMARY KEY (Vendedor, NumPrecio)
) ENGINE=InnoDB;

CREATE TABLE gastos (
    Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    PdeV SMALLINT NOT NULL DEFAULT 0,
    Sucursal VARCHAR(10) NOT NULL DEFAULT '',
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Fecha (Fecha)
) ENGINE=InnoDB;

-- Products that a customer holds with the business (containers, goods on
-- deposit): current balance per customer and product, kept by the host.
CREATE TABLE saldosprodsctes (
    Id INT NOT NULL AUTO_INCREMENT,
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Descrip VARCHAR(150) NOT NULL DEFAULT '',
    Cantidad DOUBLE NOT NULL DEFAULT 0,
    Importe DOUBLE NOT NULL DEFAULT 0,
    UltMovimiento DATE NOT NULL DEFAULT '0000-00-00',
    PRIMARY KEY (Id),
    KEY Cliente (Cliente, Producto)
) ENGINE=InnoDB;

-- Product statements per customer: movements of those products, with the
-- running quantity per customer and product. Documento names the document;
-- CantidadCargo are the units handed to the customer, CantidadAbono those
-- returned; the balances chain by Fecha, then Id, and the last one is the
-- customer's balance in saldosprodsctes.
CREATE TABLE edoctaspc (
    Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Cliente VARCHAR(15) NOT NULL DEFAULT '',
    Producto VARCHAR(20) NOT NULL DEFAULT '',
    Concepto VARCHAR(150) NOT NULL DEFAULT '',
    Documento VARCHAR(30) NOT NULL DEFAULT '',
    CantidadCargo DOUBLE NOT NULL DEFAULT 0,
    CantidadAbono DOUBLE NOT NULL DEFAULT 0,
    SaldoAnterior DOUBLE NOT NULL DEFAULT 0,
    SaldoActual DOUBLE NOT NULL DEFAULT 0,
    Usuario VARCHAR(30) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY Fecha (Fecha),
    KEY Cliente (Cliente, Producto, Fecha, Id)
) ENGINE=InnoDB;

-- ---------------------------------------------------------------------------
-- Configuration, system values, activity log, template store
-- ---------------------------------------------------------------------------

-- Company configuration: one row per setting, looked up by name whatever its
-- case. Booleans "1"/"0"; mail texts as "<name>-Asunto" / "<name>-Texto".
CREATE TABLE configura (
    Dato VARCHAR(60) CHARACTER SET utf8mb4 COLLATE utf8mb4_general_ci NOT NULL,
    Valor TEXT,
    PRIMARY KEY (Dato)
) ENGINE=InnoDB;

-- System values; transfer series are the rows "TR-" + series name.
CREATE TABLE sistema (
    Dato VARCHAR(60) NOT NULL,
    Valor VARCHAR(255) NOT NULL DEFAULT '',
    PRIMARY KEY (Dato)
) ENGINE=InnoDB;

-- User activity log. Usuario is encoded with key '418', Llave and Adicionales
-- with '184', Version and Equipo with '527'. Registro points at
-- generaltanzo.estructurasm.Id.
CREATE TABLE bitacorausuarios (
    Id INT NOT NULL AUTO_INCREMENT,
    Fecha DATE NOT NULL DEFAULT '0000-00-00',
    Hora TIME NOT NULL DEFAULT '00:00:00',
    Usuario BLOB,
    Accion VARCHAR(60) NOT NULL DEFAULT '',
    Registro INT NOT NULL DEFAULT 0,
    Llave BLOB,
    Adicionales BLOB,
    Version BLOB,
    Equipo BLOB,
    PRIMARY KEY (Id),
    KEY Fecha (Fecha),
    KEY Registro (Registro)
) ENGINE=InnoDB;

-- Template store: a file is the Contenido of its rows in Renglon order.
CREATE TABLE reportesbin (
    Archivo VARCHAR(100) NOT NULL,
    Renglon INT NOT NULL DEFAULT 0,
    Contenido MEDIUMBLOB,
    PRIMARY KEY (Archivo, Renglon)
) ENGINE=InnoDB;

CREATE TABLE anexoreportes (
    Id INT NOT NULL AUTO_INCREMENT,
    ArchivoPadre VARCHAR(100) NOT NULL DEFAULT '',
    Archivo VARCHAR(100) NOT NULL DEFAULT '',
    DESCripcion VARCHAR(150) NOT NULL DEFAULT '',
    PRIMARY KEY (Id),
    KEY ArchivoPadre (ArchivoPadre)
) ENGINE=InnoDB;
