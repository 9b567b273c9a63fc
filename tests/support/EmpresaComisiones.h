// A small company whose commissions were worked out by hand (the engine's and the report's
// tests share it): loaded over the company schema (schema/empresa.sql).
#pragma once

#include <string>

#include "schema/Esquema.h"
#include "support/Soporte.h"

namespace paratzorep::pruebas {

// The reports database's models of the commission and profit-by-seller work tables, as the schema defines them,
// created on the run's server when missing (the reports database is shared by the run).
inline void CreaModelosComisiones() {
    BaseDeDatosDePrueba modelos;
    schema::cargarArchivo(modelos.mysql(), schema::carpetaEsquemas() / "tanzoreportes.sql");
    modelos.ejecutar("CREATE DATABASE IF NOT EXISTS tanzoreportes");
    for (const char* t : {"comisxventas", "comisxventasdetalle", "utilidadxvendedor"})
        modelos.ejecutar(std::string("CREATE TABLE IF NOT EXISTS tanzoreportes.") + t + " LIKE `" +
                         modelos.nombre() + "`." + t);
}

// Sellers: V1 (brackets 0 / 1,000 / 3,750.50 / 10,000 at 1, 2, 3 and 4 %), V2 (no brackets),
// V3 (one bracket from 100 at 1.5 %). Dollars at 18.50. October 2026 is the period.
inline constexpr const char* kEmpresaComisiones = R"sql(
INSERT INTO monedas (Id,Moneda,Abreviacion,Paridad) VALUES (1,'PESOS','MN',1),(2,'DOLARES','USD',18.5);
INSERT INTO vendedores (Clave,Nombre) VALUES ('V1','ANA LOPEZ'),('V2','BETO RUIZ'),('V3','CARMEN DIAZ');
INSERT INTO clientes (Clave,Nombre) VALUES ('C1','CLIENTE UNO'),('C2','O''HARA HERMANOS');
INSERT INTO comisiones VALUES ('V1',1,0,1),('V1',2,1000,2),('V1',3,3750.5,3),('V1',4,10000,4),('V3',1,100,1.5);
INSERT INTO lineas (Id,Linea,Comision) VALUES (1,'FERRETERIA',2.5),(2,'PINTURAS',0);
INSERT INTO productos (Clave,Descrip,Linea,NumeroDePrecio,Bloqueado,ComisionPrecio1,ComisionPrecio3,Desc2) VALUES
 ('P1','MARTILLO',1,1,0,4,0,0),('P2','BROCHA',2,2,1,0,0,10),('P3','PINTURA',2,3,0,0,6,0),('P4','CLAVO',1,4,0,0,0,0);
INSERT INTO comisionesporlinea VALUES ('V1',2,5),('V3',1,0);
INSERT INTO comisionesmasprecios VALUES ('V1',1,3);
INSERT INTO facturas (Id,Serie,Factura,Fecha,Cliente,Vendedor,Cancelada,Moneda,IdMoneda,Subtotal,Total,Pagado,Saldo,Vence) VALUES
 (1,'A',101,'2026-10-05','C1','V1',0,1,1,1000,1160,1160,0,'2026-10-01'),
 (2,'A',102,'2026-10-10','C2','V1',0,2,2,100,116,58,58,'2026-11-09'),
 (3,'A',103,'2026-10-12','C1','V1',0,1,1,500,580,0,522,'2026-10-12'),
 (4,'A',104,'2026-10-13','C1','V1',1,1,1,9999,9999,0,0,'2026-10-13'),
 (5,'A',105,'2026-09-30','C1','V1',0,1,1,250,290,0,290,'2026-09-30'),
 (6,'A',106,'2026-10-20','C2','V2',0,1,1,700,812,812,0,'2026-10-20'),
 (7,'A',107,'2026-10-21','C1','',0,1,1,400,464,0,464,'2026-10-21'),
 (8,'A',108,'2026-10-25','C2','V1',0,1,1,450,522,0,0,'2026-10-25');
INSERT INTO facturasdetalle (Id,Partida,Producto,Descripcion,Cantidad,Devueltos,PrecioNeto,Remision) VALUES
 (1,1,'P1','MARTILLO 16 OZ',2,1,300,0),(1,2,'P2','',4,0,100,0),
 (2,1,'P3','PINTURA BLANCA',1,0,100,0),
 (3,1,'P1','MARTILLO 16 OZ',1,0,300,1),(3,2,'P1','MARTILLO 16 OZ',1,0,200,0),
 (5,1,'P1','MARTILLO 16 OZ',1,0,250,0),
 (6,1,'P3','PINTURA BLANCA',5,0,100,0),(6,2,'P4','CLAVO 2 PULG',2,0,100,0),
 (7,1,'P1','MARTILLO 16 OZ',1,0,400,0),
 (8,1,'P2','',3,0,150,2);
INSERT INTO remisiones (Id,Serie,Remision,Factura,Fecha,Cliente,Vendedor,Cancelada,Facturada,Moneda,IdMoneda,Subtotal,Total,Pagado,Saldo,Vence) VALUES
 (1,'R',50,50,'2026-10-01','C1','V1',0,1,1,1,300.5,348.58,348.58,0,'2026-10-10'),
 (2,'R',51,51,'2026-10-02','C2','V1',0,1,1,1,450,522,522,0,'2026-10-02'),
 (3,'R',52,52,'2026-10-03','C2','V1',1,0,1,1,800,928,0,0,'2026-10-03'),
 (4,'R',53,53,'2026-10-15','C1','V3',0,0,1,1,80,92.8,0,92.8,'2026-10-15');
INSERT INTO remisionesdetalle (Id,Partida,Producto,Descripcion,Cantidad,Devueltos,PrecioNeto) VALUES
 (1,1,'P1','MARTILLO 16 OZ',1,0,300.5),(2,1,'P2','',3,0,150),(3,1,'P1','',8,0,100),
 (4,1,'P1','MARTILLO 16 OZ',1,0,80);
INSERT INTO notascredito (NotaCredito,Fecha,Cliente,Cancelada,Total) VALUES (1,'2026-10-16','C1',0,58),(2,'2026-10-17','C1',1,116);
INSERT INTO notascreditodetalle (NotaCredito,Partida,Tipo,Numero,Cantidad) VALUES (1,1,'F',3,58),(2,1,'F',3,116);
INSERT INTO edoctacli (Folio,Fecha,Clave,CantidadPago,NotaCredito) VALUES
 (501,'2026-10-06','C1',1160,0),(502,'2026-10-15','C2',58,0),(503,'2026-10-16','C1',58,1),
 (504,'2026-09-20','C1',100,0),(505,'2026-10-20','C1',298.59,0),(506,'2026-11-05','C2',522,0),
 (507,'2026-10-22','C2',400,0),(508,'2026-11-02','C2',412,0);
INSERT INTO anexopagosctes (FolioDelPago,Factura,Remision,Cargo,Cantidad,Saldo,FechaReal) VALUES
 (501,1,0,0,1160,0,'2026-10-06'),(502,2,0,0,58,58,'2026-10-15'),(503,3,0,0,58,522,'2026-10-16'),
 (504,0,1,0,100,248.58,'2026-09-20'),(505,0,1,0,248.58,0,'2026-10-20'),
 (505,0,2,0,0.01,521.99,'2026-10-20'),(505,0,0,9,50,0,'2026-10-20'),
 (506,0,2,0,522,0,'2026-11-05'),(507,6,0,0,400,412,'2026-10-22'),(508,6,0,0,412,0,'2026-11-02');
)sql";

}  // namespace paratzorep::pruebas
