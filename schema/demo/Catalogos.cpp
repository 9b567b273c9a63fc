// Catalogues and settings: branches, currencies, product lines, brands, customer and
// supplier classes, sellers and their commissions, the configuration values the reports
// read, products, customers and suppliers.
#include <algorithm>
#include <cctype>

#include "schema/demo/Simulacion.h"

namespace paratzorep::schema::detail {

namespace {

const std::vector<std::string> kNombres = {
    "JUAN",    "MARIA",    "JOSE",    "GUADALUPE", "FRANCISCO", "ROSA",    "ANTONIO",   "MARTHA",
    "JESUS",   "PATRICIA", "MIGUEL",  "ELENA",     "PEDRO",     "LAURA",   "ALEJANDRO", "SOFIA",
    "MANUEL",  "ISABEL",   "RICARDO", "VERONICA",  "FERNANDO",  "CLAUDIA", "JORGE",     "LETICIA",
    "ROBERTO", "ADRIANA",  "RAUL",    "GABRIELA",  "ARTURO",    "SILVIA"};
const std::vector<std::string> kApellidos = {
    "HERNANDEZ", "GARCIA", "MARTINEZ",  "LOPEZ",  "GONZALEZ", "PEREZ",   "RODRIGUEZ", "SANCHEZ",
    "RAMIREZ",   "CRUZ",   "FLORES",    "GOMEZ",  "MORALES",  "VAZQUEZ", "REYES",     "JIMENEZ",
    "TORRES",    "DIAZ",   "GUTIERREZ", "RUIZ",   "MENDOZA",  "AGUILAR", "ORTIZ",     "MORENO",
    "CASTILLO",  "ROMERO", "ALVAREZ",   "MENDEZ", "CHAVEZ",   "RIVERA",  "JUAREZ",    "DOMINGUEZ"};
const std::vector<std::string> kGiros = {
    "FERRETERIA",    "MATERIALES", "CONSTRUCTORA", "ABARROTES", "TLAPALERIA",
    "DISTRIBUIDORA", "COMERCIAL",  "INMOBILIARIA", "TALLER",    "CARNICERIA"};
const std::vector<std::string> kRazones = {
    "LA ESPERANZA", "EL ROBLE",   "SAN JOSE",     "DEL NORTE", "LOS PINOS", "LA PROVIDENCIA",
    "EL AGUILA",    "SANTA FE",   "DEL BAJIO",    "LA PAZ",    "EL FARO",   "MONTEALTO",
    "VALLE VERDE",  "LAS PALMAS", "DEL PACIFICO", "LA VIGA"};
const std::vector<std::string> kSociedades = {", S.A. DE C.V.", ", S. DE R.L.", "", ", S.C."};
const std::vector<std::string> kCiudades = {
    "GUADALAJARA",    "ZAPOPAN", "TLAQUEPAQUE", "TONALA", "LEON",
    "AGUASCALIENTES", "MORELIA", "QUERETARO",   "COLIMA", "TEPIC"};
const std::vector<std::string> kColonias = {
    "CENTRO",  "AMERICANA",           "LAS AGUILAS", "PROVIDENCIA", "SAN ANDRES",
    "OBLATOS", "JARDINES DEL BOSQUE", "CHAPALITA",   "SANTA TERE",  "LA ESTANCIA"};
const std::vector<std::string> kCalles = {
    "AV. JUAREZ",   "HIDALGO", "MORELOS", "AV. VALLARTA", "INDEPENDENCIA",
    "LOPEZ MATEOS", "ALLENDE", "REFORMA", "NIÑOS HEROES", "AV. PATRIA"};
const std::vector<std::string> kClasifCtes = {"MAYOREO", "MENUDEO", "CONSTRUCTORA", "GOBIERNO",
                                              "DISTRIBUIDOR"};
const std::vector<std::string> kClasifProv = {"NACIONAL", "IMPORTADOR", "FABRICANTE", "SERVICIOS"};
struct DefLinea {
    const char* nombre;
    const char* prefijo;
    std::vector<const char*> sublineas;
    std::vector<const char*> articulos;
    std::vector<const char*> medidas;
    int clase;                     // 0 pieces, 1 metals (kg), 2 meat (kg), 3 containers, 4 services
    long long costoMin, costoMax;  // cents
};

const std::vector<DefLinea> kLineas = {
    {"FERRETERIA",
     "FER",
     {"TORNILLERIA", "CERRAJERIA", "ADHESIVOS"},
     {"TORNILLO|0|1/4\" X 1\"|3/8\" X 2\"|1/2\" X 3\"|PARA MADERA 8 X 1\"",
      "TAQUETE|0|1/4\"|5/16\"|3/8\"|CAJA 100 PZAS", "CANDADO|1|30 MM|40 MM|50 MM|LATONADO",
      "CHAPA|1|DE PERILLA|DE SOBREPONER|PARA BAÑO", "BISAGRA|1|3\"|4\"|CAPUCHINA",
      "PEGAMENTO|2|BLANCO 1 LT|DE CONTACTO 250 ML|EPOXICO 2 TUBOS",
      "CLAVO|0|2\" 1 KG|3\" 1 KG|PARA CONCRETO",
      "ARANDELA|0|PLANA 1/4\"|PLANA 3/8\"|DE PRESION 1/2\""},
     {"1/4\"", "3/8\"", "1/2\"", "38 MM", "50 MM", "CAJA 100 PZAS", "EXTRA"},
     0,
     300,
     45000},
    {"ELECTRICO",
     "ELE",
     {"CABLEADO", "ILUMINACION", "CONTACTOS"},
     {"CABLE THW|0|CAL. 12 ROLLO 100 M|CAL. 14 ROLLO 100 M|CAL. 10 POR METRO",
      "FOCO LED|1|9 W LUZ DE DIA|12 W LUZ CALIDA|18 W", "APAGADOR|2|SENCILLO|DE ESCALERA|DOBLE",
      "CONTACTO DUPLEX|2|POLARIZADO|CON TIERRA|INTEMPERIE", "EXTENSION|0|3 M|5 M|USO RUDO 10 M",
      "CINTA AISLANTE|0|NEGRA 18 M|ROJA 18 M|VINIL 20 M",
      "CENTRO DE CARGA|2|2 POLOS|4 POLOS|8 POLOS"},
     {"CAL. 12", "CAL. 14", "9 W", "12 W", "3 M", "5 M", "BLANCO"},
     0,
     900,
     120000},
    {"PLOMERIA",
     "PLO",
     {"TUBERIA", "CONEXIONES", "GRIFERIA"},
     {"TUBO PVC|0|1/2\" X 6 M|3/4\" X 6 M|4\" SANITARIO",
      "CODO|1|PVC 1/2\" 90|COBRE 3/4\" 90|PVC 4\" 45",
      "TEE|1|PVC 1/2\"|COBRE 3/4\"|GALVANIZADA 1\"", "LLAVE DE PASO|2|1/2\"|3/4\"|ESFERA 1\"",
      "MEZCLADORA|2|PARA LAVABO|PARA FREGADERO|PARA REGADERA",
      "MANGUERA|0|JARDIN 15 M|REFORZADA 20 M|COFLEX 40 CM",
      "VALVULA|1|CHECK 1/2\"|DE FLOTADOR|ANGULAR 1/2\""},
     {"1/2\"", "3/4\"", "1\"", "2\"", "CROMADA", "10 M"},
     0,
     800,
     90000},
    {"PINTURAS",
     "PIN",
     {"VINILICAS", "ESMALTES", "ACCESORIOS"},
     {"PINTURA VINILICA|0|BLANCO 19 LT|BLANCO 4 LT|MARFIL 19 LT",
      "ESMALTE|1|NEGRO 1 LT|ROJO OXIDO 4 LT|BLANCO 1 LT", "SELLADOR|0|VINILICO 19 LT|5 X 1 4 LT",
      "BROCHA|2|2\"|3\"|4\"", "RODILLO|2|9\" FELPA|4\" ESPUMA",
      "THINNER|1|ESTANDAR 1 LT|AMERICANO 4 LT",
      "IMPERMEABILIZANTE|0|ACRILICO 19 LT 5 AÑOS|FIBRATADO 19 LT"},
     {"1 LT", "4 LT", "19 LT", "2\"", "4\"", "BLANCO", "ROJO OXIDO"},
     0,
     2500,
     180000},
    {"HERRAMIENTAS",
     "HER",
     {"MANUALES", "ELECTRICAS"},
     {"MARTILLO|0|UÑA 16 OZ|BOLA 12 OZ|DE GOMA",
      "DESARMADOR|0|PLANO 1/4\"|PHILLIPS #2|JUEGO 6 PZAS",
      "PINZAS|0|DE ELECTRICISTA 8\"|DE PRESION 10\"|DE PUNTA 6\"",
      "TALADRO|1|1/2\" 600 W|ROTOMARTILLO 3/4\"", "ESMERILADORA|1|ANGULAR 4 1/2\"|DE BANCO 6\"",
      "FLEXOMETRO|0|3 M|5 M|8 M", "SEGUETA|0|ARCO 12\"|HOJA BIMETALICA"},
     {"16 OZ", "PLANO", "PHILLIPS", "1/2\" 600 W", "4 1/2\"", "5 M", "8\""},
     0,
     3500,
     250000},
    {"JARDINERIA",
     "JAR",
     {"RIEGO", "HERRAMIENTA DE JARDIN"},
     {"ASPERSOR|0|DE IMPACTO|GIRATORIO 3 BRAZOS", "PALA|1|CUADRADA|REDONDA|JARDINERA",
      "RASTRILLO|1|14 DIENTES|PARA HOJAS", "TIJERA DE PODAR|1|8\"|DE DOS MANOS",
      "CARRETILLA|1|5 PIES3|6 PIES3 REFORZADA", "MACETA|0|BARRO 20 CM|PLASTICO 30 CM"},
     {"CHICA", "MEDIANA", "GRANDE", "REFORZADA"},
     0,
     2000,
     150000},
    {"LIMPIEZA",
     "LIM",
     {"QUIMICOS", "UTENSILIOS"},
     {"CLORO|0|1 LT|GALON 3.75 LT", "DETERGENTE|0|EN POLVO 1 KG|LIQUIDO 5 LT",
      "ESCOBA|1|ABANICO|DE MIJO|INDUSTRIAL", "TRAPEADOR|1|DE ALGODON|DE MICROFIBRA",
      "CUBETA|1|12 LT|19 LT CON EXPRIMIDOR", "DESENGRASANTE|0|1 LT|INDUSTRIAL 20 LT"},
     {"1 LT", "5 LT", "1 KG", "INDUSTRIAL", "CHICA"},
     0,
     900,
     30000},
    {"ABARROTES",
     "ABA",
     {"BEBIDAS", "BASICOS"},
     {"AGUA PURIFICADA|0|600 ML|1.5 LT|GARRAFON 20 LT", "REFRESCO|0|600 ML|2 LT|LATA 355 ML",
      "AZUCAR|1|ESTANDAR 1 KG|REFINADA 2 KG", "ARROZ|1|1 KG|5 KG", "FRIJOL|1|NEGRO 1 KG|PINTO 1 KG",
      "ACEITE|1|900 ML|1 LT", "CAFE|1|SOLUBLE 200 G|MOLIDO 400 G"},
     {"600 ML", "2 LT", "1 KG", "5 KG", "900 ML"},
     0,
     800,
     12000},
    {"METALES",
     "MET",
     {"NO FERROSOS", "FERROSOS"},
     {"COBRE|0|DE PRIMERA", "BRONCE|0|AMARILLO", "ALUMINIO|0|PERFIL", "FIERRO|1|DE PRIMERA",
      "CHATARRA MIXTA|1|SIN CLASIFICAR"},
     {"DE PRIMERA", "DE SEGUNDA"},
     1,
     900,
     14000},
    {"CARNES",
     "CAR",
     {"RES", "CERDO"},
     {"CANAL DE RES|0|POR KG", "BISTEC DE RES|0|POR KG", "ARRACHERA|0|POR KG", "COSTILLA|0|POR KG",
      "CARNE MOLIDA|0|POR KG", "CHAMBARETE|0|POR KG", "PIERNA DE CERDO|1|POR KG"},
     {"POR KG"},
     2,
     6000,
     32000},
    {"ENVASES",
     "ENV",
     {"RETORNABLES"},
     {"GARRAFON 20 LTS", "CAJA DE PLASTICO", "TARIMA DE MADERA", "TANQUE DE GAS 30 KG"},
     {"RETORNABLE"},
     3,
     3000,
     60000},
    {"SERVICIOS",
     "SER",
     {"SERVICIOS"},
     {"FLETE LOCAL", "SERVICIO DE CORTE", "INSTALACION", "AFILADO"},
     {"POR EVENTO"},
     4,
     5000,
     40000},
};

const std::vector<const char*> kMarcas = {"TRUPER", "URREA", "PRETUL", "VOLTECK",
                                          "COMEX",  "BEREL", "RUGO",   "COFLEX",
                                          "HELVEX", "FOSET", "ARGOS",  "SIN MARCA"};

}  // namespace

void Simulacion::catalogos() {
    auto suc = lote("sucursales", "Clave,Nombre,Direccion,Ciudad,Telefono");
    const std::array<const char*, 4> nombresSuc = {"MATRIZ", "SUCURSAL NORTE", "SUCURSAL SUR",
                                                   "BODEGA CENTRAL"};
    for (size_t i = 0; i < sucursales_.size(); ++i)
        suc->agrega(Renglon()
                        .t(sucursales_[i])
                        .t(nombresSuc[i])
                        .t(junta({elige(az_, kCalles), " ", std::to_string(az_.entre(10, 2500))}))
                        .t(elige(az_, kCiudades))
                        .t(telefono("33 ")));
    suc->termina();

    auto mon = lote("monedas", "Id,Moneda,Abreviacion,Simbolo,Paridad");
    mon->agrega(Renglon().n(1).t("PESOS").t("MN").t("$").x(1.0, 4));
    mon->agrega(Renglon().n(2).t("DOLARES").t("USD").t("US$").x(paridad(2, fin_), 4));
    mon->agrega(Renglon().n(3).t("EUROS").t("EUR").t("€").x(paridad(3, fin_), 4));
    mon->termina();

    auto lin = lote("lineas", "Id,Linea,Comision");
    auto sub = lote("sublineas", "Id,IdLinea,SubLinea");
    int idSub = 1;
    for (size_t i = 0; i < kLineas.size(); ++i) {
        lin->agrega(Renglon()
                        .n(static_cast<long long>(i) + 1)
                        .t(kLineas[i].nombre)
                        .x(static_cast<double>(az_.entre(0, 6)) / 2.0, 2));
        for (const char* s : kLineas[i].sublineas)
            sub->agrega(Renglon().n(idSub++).n(static_cast<long long>(i) + 1).t(s));
    }
    lin->termina();
    sub->termina();

    auto mar = lote("marcas", "Id,Marca");
    for (size_t i = 0; i < kMarcas.size(); ++i)
        mar->agrega(Renglon().n(static_cast<long long>(i) + 1).t(kMarcas[i]));
    mar->termina();

    auto cc = lote("clasificactes", "Id,Clasificacion");
    for (size_t i = 0; i < kClasifCtes.size(); ++i)
        cc->agrega(Renglon().n(static_cast<long long>(i) + 1).t(kClasifCtes[i]));
    cc->termina();
    auto cp = lote("clasificaprov", "Id,Clasificacion");
    for (size_t i = 0; i < kClasifProv.size(); ++i)
        cp->agrega(Renglon().n(static_cast<long long>(i) + 1).t(kClasifProv[i]));
    cp->termina();

    // Sellers, their commission brackets, line and price-number percentages.
    const int nVend = 6 + s_;
    auto ven = lote("vendedores", "Clave,Nombre,Email,Telefono,Comision,Sucursal,Activo");
    auto com = lote("comisiones", "Vendedor,Renglon,CantVendida,Comision");
    auto cpl = lote("comisionesporlinea", "Vendedor,Linea,Comision");
    auto cmp = lote("comisionesmasprecios", "Vendedor,NumPrecio,Comision");
    for (int i = 1; i <= nVend; ++i) {
        const std::string clave = "V" + conCeros(i, 2);
        vendedores_.push_back(clave);
        const std::string nombre =
            junta({elige(az_, kNombres), " ", elige(az_, kApellidos), " ", elige(az_, kApellidos)});
        std::string correo =
            nombre.substr(0, 1) + kApellidos[static_cast<size_t>(i) % kApellidos.size()];
        std::transform(correo.begin(), correo.end(), correo.begin(),
                       [](unsigned char ch) { return static_cast<char>(std::tolower(ch)); });
        ven->agrega(Renglon()
                        .t(clave)
                        .t(nombre)
                        .t(correo + "@elroble.com.mx")
                        .t(telefono("33 1"))
                        .x(static_cast<double>(az_.entre(1, 5)), 2)
                        .t(sucursales_[static_cast<size_t>(i) % 3])
                        .n(i == nVend ? 0 : 1));
        if (i != 2) {  // one seller without brackets earns nothing under the table scheme
            // Monthly targets: a seller sells about 0.6 to 1.9 million a month at scale 1, and
            // each seller's share grows as 7 * scale / sellers; rounded to 50,000.
            const std::array<long long, 4> umbral = {0, 100000000, 140000000, 180000000};
            const std::array<double, 4> pct = {1.0, 1.5, 2.0, 2.5};
            for (int r = 0; r < 4; ++r) {
                const long long u = umbral[static_cast<size_t>(r)] * 7 * s_ / nVend;
                com->agrega(Renglon()
                                .t(clave)
                                .n(r + 1)
                                .m((u + 2500000) / 5000000 * 5000000)
                                .x(pct[static_cast<size_t>(r)] + (i % 3) * 0.25, 2));
            }
        }
        for (size_t l = 0; l < kLineas.size(); ++l)
            if (az_.probable(0.4))
                cpl->agrega(Renglon()
                                .t(clave)
                                .n(static_cast<long long>(l) + 1)
                                .x(static_cast<double>(az_.entre(2, 12)) / 2.0, 2));
        for (int np = 1; np <= 5; ++np)
            if (i % 2 == 0 || np == 1) cmp->agrega(Renglon().t(clave).n(np).x(4.0 - np * 0.5, 2));
    }
    ven->termina();
    com->termina();
    cpl->termina();
    cmp->termina();

    // Configuration values read by the reports.
    auto cfg = lote("configura", "Dato,Valor");
    const std::vector<std::pair<const char*, const char*>> config = {
        {"MultiMoneda", "1"},
        {"Servicios", "1"},
        {"Precios", "5"},
        {"SeriesEnTra", "1"},
        {"SubLineas", "1"},
        {"Marcas", "1"},
        {"Remisiones", "1"},
        {"Apartados", "1"},
        {"Vendedores", "1"},
        {"ClasificaCtes", "1"},
        {"ClasificaProv", "1"},
        {"OtrasCompras", "1"},
        {"NotasCredito", "1"},
        {"ChequesEnPagos", "1"},
        {"ImpReciboEnPagos", "1"},
        {"PagosSinDefinir", "1"},
        {"FDPenPagosCtes", "1"},
        {"CFDI3.3", "0"},
        {"ComisXpagado", "0"},
        {"ComisXliquidado", "0"},
        {"ComisVendXtabla", "1"},
        {"ComisVendXlinea", "0"},
        {"ComisVendXprecios", "0"},
        {"ComisVendXlinYprec", "0"},
        {"FolioSEL", "0"},
        {"AplicaIVA", "1"},
        {"AplicaImpAd", "1"},
        {"multiempresa", "0"},
        {"PorcentajeIVA", "16"},
        {"NombreEmpresa", "COMERCIALIZADORA EL ROBLE, S.A. DE C.V."},
        {"RFCEmpresa", "CER031015AB7"},
        {"DireccionEmpresa", "AV. JUAREZ 1450, COL. CENTRO, GUADALAJARA, JAL."},
        {"EDC-ADS-Asunto", "Antigüedad de saldos"},
        {"EDC-ADS-Texto",
         "Estimado cliente: le enviamos el detalle de sus documentos pendientes. Quedamos a sus "
         "órdenes."},
        {"Mensaje del correo para EDC-ADS",
         "Adjunto encontrará su estado de cuenta con la antigüedad de sus saldos."}};
    for (const auto& [d, v] : config) cfg->agrega(Renglon().t(d).t(v));
    cfg->termina();

    auto sis = lote("sistema", "Dato,Valor");
    for (const char* d : {"TR-", "TR-A", "TR-B"}) sis->agrega(Renglon().t(d).t("0"));
    for (const char* d : {"FolioFacturaA", "FolioFacturaB", "FolioRemision", "FolioApartado",
                          "FolioTicket", "FolioNotaCredito", "VersionBD"})
        sis->agrega(Renglon().t(d).t("0"));
    sis->termina();
}

void Simulacion::productos() {
    const int porLinea = 22 + 12 * s_;
    prodsPorClase_.assign(5, {});
    int subBase = 1;
    for (size_t li = 0; li < kLineas.size(); ++li) {
        const DefLinea& L = kLineas[li];
        std::map<std::string, int> usados;
        const int n = L.clase == 0 ? porLinea : static_cast<int>(L.articulos.size());
        for (int k = 0; k < n; ++k) {
            Producto p;
            p.clase = L.clase;
            p.linea = static_cast<int>(li) + 1;
            p.sublinea = subBase + static_cast<int>(az_.entre(
                                       0, static_cast<long long>(L.sublineas.size()) - 1));
            // Articles of the piece lines read "NAME|sub-line|size|size...".
            const std::string def =
                L.clase == 0 ? elige(az_, L.articulos) : L.articulos[static_cast<size_t>(k)];
            std::vector<std::string> trozos;
            for (size_t a = 0, b; a <= def.size(); a = b + 1) {
                b = def.find('|', a);
                if (b == std::string::npos) b = def.size();
                trozos.push_back(def.substr(a, b - a));
            }
            const std::string art = trozos[0];
            if (trozos.size() > 2) {
                p.sublinea = subBase + std::stoi(trozos[1]);
                trozos.erase(trozos.begin(), trozos.begin() + 2);
            } else {
                trozos.assign(L.medidas.begin(), L.medidas.end());
            }
            std::string desc = art + " " + elige(az_, trozos);
            // A repeated description becomes a variant of the article.
            if (int& u = usados[desc]; u++ > 0) {
                static const std::array<const char*, 5> kVariantes = {
                    "REFORZADO", "ECONOMICO", "PROFESIONAL", "PREMIUM", "INDUSTRIAL"};
                desc += u <= static_cast<int>(kVariantes.size())
                            ? std::string(" ") + kVariantes[static_cast<size_t>(u - 1)]
                            : " MOD. " + std::to_string(u);
            }
            p.descrip = desc;
            p.clave = std::string(L.prefijo) + "-" + conCeros(k + 1, 4);
            p.unidad = (L.clase == 1 || L.clase == 2) ? "KG" : (L.clase == 4 ? "SERV" : "PZA");
            p.marca = L.clase == 0
                          ? static_cast<int>(az_.entre(1, static_cast<long long>(kMarcas.size())))
                          : static_cast<int>(kMarcas.size());
            p.costo = az_.entre(L.costoMin, L.costoMax);
            p.costoBase = p.costo;
            p.costoProm = p.costo;
            const std::array<double, 5> margen = {1.38, 1.32, 1.27, 1.22, 1.17};
            for (size_t j = 0; j < 5; ++j) {
                p.precio[j] = redondea(static_cast<double>(p.costo) * margen[j] / 50.0) * 50;
                p.desc[j] = az_.probable(0.2) ? static_cast<int>(az_.entre(1, 4)) * 5 : 0;
                p.comis[j] = az_.probable(0.3) ? static_cast<double>(az_.entre(1, 8)) / 2.0 : 0.0;
            }
            p.numPrecio = static_cast<int>(az_.entre(1, 5));
            p.bloqueado = az_.probable(0.15) ? 1 : 0;
            p.minimo = L.clase == 3 ? 0 : az_.entre(5, 40) * 1000;
            // The carcass and the mixed scrap feed the cuts and the separations.
            if (art == "CANAL DE RES" || art == "CHATARRA MIXTA") p.minimo = 600000;
            p.alta = inicio_ - static_cast<int>(az_.entre(30, 2000));
            prodsPorClase_[static_cast<size_t>(L.clase)].push_back(static_cast<int>(prods_.size()));
            if (L.clase == 0 || L.clase == 2 || (L.clase == 1 && art != "CHATARRA MIXTA"))
                prodsVendibles_.push_back(static_cast<int>(prods_.size()));
            prods_.push_back(std::move(p));
        }
        subBase += static_cast<int>(L.sublineas.size());
    }
}

void Simulacion::clientesYproveedores() {
    const int nProv = 20 + 8 * s_;
    for (int i = 1; i <= nProv; ++i) {
        Proveedor p;
        p.clave = "P" + conCeros(i, 4);
        p.nombre = junta({elige(az_, kGiros), " ", elige(az_, kRazones), elige(az_, kSociedades)});
        p.rfc = junta({p.nombre.substr(0, 3), conCeros(az_.entre(0, 999999), 6),
                       std::string(1, static_cast<char>('A' + az_.entre(0, 25))), "X",
                       std::to_string(az_.entre(0, 9))});
        p.direccion = junta({elige(az_, kCalles), " ", std::to_string(az_.entre(1, 3000))});
        p.ciudad = elige(az_, kCiudades);
        p.tel = telefono("33 ");
        p.email = az_.probable(0.7) ? "ventas" + std::to_string(i) + "@proveedor" +
                                          std::to_string(i) + ".example.org"
                                    : "";
        p.contacto = junta({elige(az_, kNombres), " ", elige(az_, kApellidos)});
        p.clasif = az_.probable(0.9) ? elige(az_, kClasifProv) : "";
        p.diasCredito = static_cast<int>(az_.entre(1, 4)) * 15;
        p.moneda = i % 7 == 3 ? 2 : 1;
        provs_.push_back(p);
    }
    for (auto& p : prods_) {
        p.prov1 = provs_[static_cast<size_t>(az_.entre(0, nProv - 1))].clave;
        p.prov2 =
            az_.probable(0.4) ? provs_[static_cast<size_t>(az_.entre(0, nProv - 1))].clave : "";
    }

    const int nCli = 150 + 150 * s_;
    for (int i = 1; i <= nCli; ++i) {
        Cliente c;
        c.clave = "C" + conCeros(i, 5);
        if (az_.probable(0.45)) {
            c.nombre =
                junta({elige(az_, kGiros), " ", elige(az_, kRazones), elige(az_, kSociedades)});
        } else {
            c.nombre = junta(
                {elige(az_, kNombres), " ", elige(az_, kApellidos), " ", elige(az_, kApellidos)});
        }
        std::string base;
        for (char ch : c.nombre)
            if (std::isalpha(static_cast<unsigned char>(ch)) && base.size() < 10)
                base += static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
        c.rfc = junta({c.nombre.substr(0, 4), conCeros(az_.entre(0, 999999), 6), "H",
                       std::to_string(az_.entre(10, 99))});
        c.direccion = junta({elige(az_, kCalles), " ", std::to_string(az_.entre(1, 3000))});
        c.colonia = elige(az_, kColonias);
        c.ciudad = elige(az_, kCiudades);
        c.cp = std::to_string(az_.entre(44100, 45999));
        c.tel = telefono("33 ");
        c.email = az_.probable(0.6) ? base + std::to_string(i) + "@example.com" : "";
        c.clasif = az_.probable(0.9) ? elige(az_, kClasifCtes) : "";
        c.vendedor = az_.probable(0.93) ? elige(az_, vendedores_) : "";
        c.diasCredito = static_cast<int>(az_.entre(0, 4)) * 15;
        c.limite = c.diasCredito > 0 ? az_.entre(10, 200) * 100000 : 0;
        c.numPrecio = static_cast<int>(az_.entre(1, 5));
        c.alta = inicio_ - static_cast<int>(az_.entre(10, 1500));
        c.monedaExtra = i % 9 == 4 ? 2 : (i % 29 == 7 ? 3 : 0);
        clis_.push_back(std::move(c));
    }
}

// Products with their alternate codes, customers and suppliers with their final balance in
// pesos (the accounts are closed before).
void Simulacion::cierreCatalogos() {
    auto pr = lote("productos",
                   "Clave,Descrip,Unidad,Linea,SubLinea,Marca,Proveedor1,Proveedor2,Servicio,"
                   "Existencia,Minimo,Maximo,Costo,CostoProm,IVA,Precio1,Precio2,Precio3,Precio4,"
                   "Precio5,Desc1,Desc2,Desc3,Desc4,Desc5,ComisionPrecio,ComisionPrecio1,"
                   "ComisionPrecio2,ComisionPrecio3,ComisionPrecio4,ComisionPrecio5,NumeroDePrecio,"
                   "Bloqueado,IdMoneda,FechaAlta");
    auto alt = lote("clavesalternas", "Id,ClaveProducto,ClaveAlterna");
    int sigAlt = 1;
    for (const Producto& p : prods_) {
        Renglon r;
        r.t(p.clave)
            .t(p.descrip)
            .t(p.unidad)
            .n(p.linea)
            .n(p.sublinea)
            .n(p.marca)
            .t(p.prov1)
            .t(p.prov2)
            .n(p.clase == 4 ? 1 : 0)
            .q(p.exist)
            .q(p.minimo)
            .q(p.minimo * 4)
            .m(p.costo)
            .m(p.costoProm)
            .n(16);
        for (long long x : p.precio) r.m(x);
        for (int x : p.desc) r.n(x);
        r.x(p.comis[0], 2);
        for (double x : p.comis) r.x(x, 2);
        r.n(p.numPrecio).n(p.bloqueado).n(1).f(p.alta);
        pr->agrega(r);
        if (p.clase != 4 && az_.probable(0.3)) {
            const int n = static_cast<int>(az_.entre(1, 2));
            for (int k = 0; k < n; ++k)
                alt->agrega(Renglon().n(sigAlt++).t(p.clave).t(
                    "750" + conCeros(az_.entre(0, 9999999999LL), 10)));
        }
    }
    pr->termina();
    alt->termina();

    // The balance in pesos, 0 for an account without movements in pesos.
    auto saldoEnPesos = [](const std::map<std::pair<std::string, int>, long long>& saldos,
                           const std::string& clave) {
        auto it = saldos.find({clave, 1});
        return it == saldos.end() ? 0LL : it->second;
    };
    auto cl = lote("clientes",
                   "Id,Clave,Nombre,RFC,Direccion,Colonia,Ciudad,CP,Telefono,Email,Clasificacion,"
                   "Vendedor,LimiteCredito,DiasCredito,NumeroDePrecio,Saldo,SusPuntos,UltPago,"
                   "FechaAlta,Bloqueado");
    for (size_t i = 0; i < clis_.size(); ++i) {
        const Cliente& c = clis_[i];
        Renglon r;
        r.n(static_cast<long long>(i) + 1)
            .t(c.clave)
            .t(c.nombre)
            .t(c.rfc)
            .t(c.direccion)
            .t(c.colonia)
            .t(c.ciudad)
            .t(c.cp)
            .t(c.tel)
            .t(c.email)
            .t(c.clasif)
            .t(c.vendedor)
            .m(c.limite)
            .n(c.diasCredito)
            .n(c.numPrecio)
            .m(saldoEnPesos(saldosCli_, c.clave))
            .n(c.puntos);
        if (c.ultPago)
            r.f(c.ultPago);
        else
            r.cero();
        r.f(c.alta).n(i % 97 == 13 ? 1 : 0);
        cl->agrega(r);
    }
    cl->termina();

    auto pv = lote("proveedores",
                   "Id,Clave,Nombre,RFC,Direccion,Ciudad,Telefono,Email,Contacto,Clasificacion,"
                   "DiasCredito,Saldo,UltPago");
    for (size_t i = 0; i < provs_.size(); ++i) {
        const Proveedor& p = provs_[i];
        Renglon r;
        r.n(static_cast<long long>(i) + 1)
            .t(p.clave)
            .t(p.nombre)
            .t(p.rfc)
            .t(p.direccion)
            .t(p.ciudad)
            .t(p.tel)
            .t(p.email)
            .t(p.contacto)
            .t(p.clasif)
            .n(p.diasCredito)
            .m(saldoEnPesos(saldosProv_, p.clave));
        if (p.ultPago)
            r.f(p.ultPago);
        else
            r.cero();
        pv->agrega(r);
    }
    pv->termina();
}

}  // namespace paratzorep::schema::detail
