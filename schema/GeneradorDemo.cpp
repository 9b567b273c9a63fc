#include "schema/GeneradorDemo.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <exception>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace paratzorep::schema {

namespace detail {

namespace {
std::uint64_t splitmix64(std::uint64_t& x) {
    std::uint64_t z = (x += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}
std::uint64_t rotl(std::uint64_t x, int k) {
    return (x << k) | (x >> (64 - k));
}
}  // namespace

Azar::Azar(std::uint64_t semilla) {
    std::uint64_t x = semilla;
    for (auto& s : s_) s = splitmix64(x);
}

std::uint64_t Azar::siguiente() {
    const std::uint64_t r = rotl(s_[1] * 5, 7) * 9;
    const std::uint64_t t = s_[1] << 17;
    s_[2] ^= s_[0];
    s_[3] ^= s_[1];
    s_[1] ^= s_[2];
    s_[0] ^= s_[3];
    s_[2] ^= t;
    s_[3] = rotl(s_[3], 45);
    return r;
}

long long Azar::entre(long long a, long long b) {
    if (b <= a) return a;
    const std::uint64_t rango = static_cast<std::uint64_t>(b - a) + 1;
    return a + static_cast<long long>(siguiente() % rango);
}

double Azar::unitario() {
    return static_cast<double>(siguiente() >> 11) * 0x1.0p-53;
}

int diasDesdeCivil(int y, int m, int d) {
    y -= m <= 2;
    const int era = (y >= 0 ? y : y - 399) / 400;
    const int yoe = y - era * 400;
    const int doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

namespace {
void civilDeDias(int z, int& y, int& m, int& d) {
    z += 719468;
    const int era = (z >= 0 ? z : z - 146096) / 146097;
    const int doe = z - era * 146097;
    const int yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = yoe + era * 400;
    const int doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp + (mp < 10 ? 3 : -9);
    y += m <= 2;
}
}  // namespace

std::string textoFecha(int dias) {
    int y, m, d;
    civilDeDias(dias, y, m, d);
    char b[16];
    std::snprintf(b, sizeof b, "%04d-%02d-%02d", y, m, d);
    return b;
}

int fechaDeTexto(std::string_view t) {
    int y = 0, m = 0, d = 0;
    if (t.size() != 10 || t[4] != '-' || t[7] != '-' ||
        std::sscanf(std::string(t).c_str(), "%4d-%2d-%2d", &y, &m, &d) != 3 || m < 1 || m > 12 ||
        d < 1 || d > 31)
        throw std::invalid_argument("fecha no válida: '" + std::string(t) + "'");
    return diasDesdeCivil(y, m, d);
}

std::string textoCentavos(long long c) {
    const bool neg = c < 0;
    const unsigned long long a = neg ? 0ULL - static_cast<unsigned long long>(c) : c;
    char b[32];
    std::snprintf(b, sizeof b, "%s%llu.%02llu", neg ? "-" : "", a / 100, a % 100);
    return b;
}

std::string textoMilesimas(long long c) {
    const bool neg = c < 0;
    const unsigned long long a = neg ? 0ULL - static_cast<unsigned long long>(c) : c;
    char b[32];
    std::snprintf(b, sizeof b, "%s%llu.%03llu", neg ? "-" : "", a / 1000, a % 1000);
    return b;
}

namespace {

// ---------------------------------------------------------------------------
// Writing: one SQL value list per row, multi-row INSERTs of a few megabytes.
// ---------------------------------------------------------------------------

class Renglon {
  public:
    Renglon& n(long long v) { return r(std::to_string(v)); }
    Renglon& m(long long centavos) { return r(textoCentavos(centavos)); }
    Renglon& q(long long milesimas) { return r(textoMilesimas(milesimas)); }
    Renglon& f(int dias) { return t(textoFecha(dias)); }
    Renglon& cero() { return t("0000-00-00"); }
    Renglon& h(int segundos) {
        char b[32];
        std::snprintf(b, sizeof b, "'%02d:%02d:%02d'", segundos / 3600, segundos / 60 % 60,
                      segundos % 60);
        return r(b);
    }
    Renglon& x(double v, int decimales) {
        char b[48];
        std::snprintf(b, sizeof b, "%.*f", decimales, v);
        return r(b);
    }
    Renglon& t(std::string_view s) {
        std::string v = "'";
        for (char c : s) {
            if (c == '\'')
                v += "''";
            else if (c == '\\')
                v += "\\\\";
            else
                v += c;
        }
        v += '\'';
        return r(v);
    }
    // A text stored with the server's ENCODE and the given key.
    Renglon& cod(std::string_view s, std::string_view clave) {
        Renglon tmp;
        tmp.t(s);
        return r("ENCODE(" + tmp.s_ + ",'" + std::string(clave) + "')");
    }
    Renglon& r(std::string_view crudo) {
        if (!s_.empty()) s_ += ',';
        s_ += crudo;
        return *this;
    }
    const std::string& texto() const { return s_; }

  private:
    std::string s_;
};

// Runs the INSERT statements on a few connections of their own while the
// generator goes on: the server's time, not the generator's, dominates a load.
// Every row carries its key, so the order in which batches land does not change
// the data.
class Escritores {
  public:
    Escritores(Conexion& origen, int n) {
        for (int i = 0; i < n; ++i) {
            conexiones_.push_back(origen.otra());
            for (const char* sql :
                 {"SET SESSION unique_checks=0", "SET SESSION foreign_key_checks=0",
                  "SET SESSION sql_mode='NO_ENGINE_SUBSTITUTION'"})
                conexiones_.back().ejecutar(sql);
        }
        for (auto& c : conexiones_) hilos_.emplace_back([this, &c] { trabaja(c); });
    }
    Escritores(const Escritores&) = delete;
    Escritores& operator=(const Escritores&) = delete;
    ~Escritores() {
        {
            std::lock_guard l(m_);
            fin_ = true;
        }
        hay_.notify_all();
        for (auto& h : hilos_) h.join();
    }

    void envia(std::string sql) {
        std::unique_lock l(m_);
        espacio_.wait(l, [&] { return cola_.size() < kMaxCola || error_; });
        if (error_) std::rethrow_exception(error_);
        cola_.push_back(std::move(sql));
        hay_.notify_one();
    }

    // Waits until every statement sent has run; rethrows the first failure.
    void termina() {
        std::unique_lock l(m_);
        espacio_.wait(l, [&] { return (cola_.empty() && ocupados_ == 0) || error_; });
        if (error_) std::rethrow_exception(error_);
    }

  private:
    static constexpr size_t kMaxCola = 6;

    void trabaja(Conexion& c) {
        for (;;) {
            std::string sql;
            {
                std::unique_lock l(m_);
                hay_.wait(l, [&] { return !cola_.empty() || fin_; });
                if (cola_.empty()) return;
                sql = std::move(cola_.front());
                cola_.pop_front();
                if (error_) {  // the load has failed: drop what is left
                    espacio_.notify_all();
                    continue;
                }
                ++ocupados_;
            }
            std::exception_ptr e;
            try {
                c.ejecutar(sql);
            } catch (...) {
                e = std::current_exception();
            }
            {
                std::lock_guard l(m_);
                --ocupados_;
                if (e && !error_) error_ = e;
            }
            espacio_.notify_all();
        }
    }

    std::vector<Conexion> conexiones_;
    std::vector<std::thread> hilos_;
    std::mutex m_;
    std::condition_variable hay_, espacio_;
    std::deque<std::string> cola_;
    int ocupados_ = 0;
    bool fin_ = false;
    std::exception_ptr error_;
};

class Lote {
  public:
    Lote(Escritores& e, ConteoFilas& conteos, std::string tabla, std::string columnas)
        : e_(e), conteos_(conteos), tabla_(std::move(tabla)), columnas_(std::move(columnas)) {
        conteos_[tabla_] += 0;
    }
    Lote(const Lote&) = delete;
    Lote& operator=(const Lote&) = delete;
    ~Lote() = default;

    void agrega(const Renglon& r) {
        if (buf_.empty())
            buf_ = "INSERT INTO " + tabla_ + " (" + columnas_ + ") VALUES ";
        else
            buf_ += ',';
        buf_ += '(';
        buf_ += r.texto();
        buf_ += ')';
        ++pendientes_;
        if (buf_.size() > kTamLote) termina();
    }
    void termina() {
        if (buf_.empty()) return;
        conteos_[tabla_] += pendientes_;
        pendientes_ = 0;
        e_.envia(std::move(buf_));
        buf_.clear();
    }

  private:
    static constexpr size_t kTamLote = 2u << 20;
    Escritores& e_;
    ConteoFilas& conteos_;
    std::string tabla_, columnas_, buf_;
    long long pendientes_ = 0;
};

// ---------------------------------------------------------------------------
// Texts of the demo business.
// ---------------------------------------------------------------------------

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
const std::vector<std::string> kUsuarios = {"ADMIN", "ANA",   "M",      "MARIO",
                                            "CAJA1", "CAJA2", "LUPITA", "JUAN"};
const std::vector<std::string> kBancos = {"BANAMEX", "BBVA", "SANTANDER",
                                          "BANORTE", "HSBC", "SCOTIABANK"};
const std::vector<std::string> kEquipos = {"CAJA-01", "CAJA-02", "OFICINA-01", "ALMACEN",
                                           "GERENCIA"};
const std::vector<std::string> kVersiones = {"5.2.118", "5.2.121", "5.3.004"};

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

const std::vector<std::pair<int, const char*>> kEstructuras = {{100, "CATALOGO DE CLIENTES"},
                                                               {101, "CATALOGO DE PRODUCTOS"},
                                                               {102, "CATALOGO DE PROVEEDORES"},
                                                               {110, "FACTURACION"},
                                                               {111, "REMISIONES"},
                                                               {112, "PUNTO DE VENTA"},
                                                               {120, "PAGOS DE CLIENTES"},
                                                               {121, "PAGOS A PROVEEDORES"},
                                                               {130, "COMPRAS"},
                                                               {131, "ENTRADAS DE MERCANCIA"},
                                                               {132, "TRASPASOS"},
                                                               {133, "AJUSTES DE INVENTARIO"},
                                                               {140, "CANCELACION DE DOCUMENTO"},
                                                               {156, "EDICION DE FORMATO"},
                                                               {160, "REPORTES"},
                                                               {180, "ENTRADA AL SISTEMA"},
                                                               {181, "SALIDA DEL SISTEMA"}};

template <typename T>
const T& elige(Azar& a, const std::vector<T>& v) {
    return v[static_cast<size_t>(a.entre(0, static_cast<long long>(v.size()) - 1))];
}

// Joins texts in order: a braced list evaluates its elements left to right, so
// the draws of chance inside them happen in a fixed order on every compiler.
std::string junta(std::initializer_list<std::string> partes) {
    std::string r;
    for (const auto& p : partes) r += p;
    return r;
}

long long redondea(double v) {
    return static_cast<long long>(std::llround(v));
}

std::string conCeros(long long n, int ancho) {
    std::string s = std::to_string(n);
    if (static_cast<int>(s.size()) < ancho) s.insert(0, ancho - s.size(), '0');
    return s;
}

// ---------------------------------------------------------------------------
// The simulated business.
// ---------------------------------------------------------------------------

enum Kind { kFactura = 0, kRemision = 1, kApartado = 2 };
const char* kTablaDoc[] = {"facturas", "remisiones", "apartados"};
const char* kPalabraDoc[] = {"FACTURA", "REMISION", "APARTADO"};
const char kLetraDoc[] = {'F', 'R', 'A'};

struct Producto {
    std::string clave, descrip, unidad;
    int linea = 0, sublinea = 0, marca = 0, clase = 0;
    std::string prov1, prov2;
    long long costo = 0, costoProm = 0, costoBase = 0;  // cents
    std::array<long long, 5> precio{};
    std::array<int, 5> desc{};
    std::array<double, 5> comis{};
    int numPrecio = 1, bloqueado = 0;
    long long exist = 0, minimo = 0;  // thousandths
    int alta = 0;
};

struct Cliente {
    std::string clave, nombre, rfc, direccion, colonia, ciudad, cp, tel, email, clasif, vendedor;
    long long limite = 0;
    int diasCredito = 0, numPrecio = 1, alta = 0, ultPago = 0;
    int monedaExtra = 0;  // 0: pesos only; 2 or 3: also dollars or euros
    long long puntos = 0;
};

struct Proveedor {
    std::string clave, nombre, rfc, direccion, ciudad, tel, email, contacto, clasif;
    int diasCredito = 30, moneda = 1, ultPago = 0;
};

struct Partida {
    int prod = 0;
    long long cant = 0;  // thousandths
    long long precio = 0, precioNeto = 0, costoProm = 0;
    long long devueltos = 0;
    int idKardex = 0, remision = 0, numPrecio = 1;
    double paridadCompra = 1.0;
    long long descuento = 0;  // line discount percent
};

struct Documento {
    int kind = 0, id = 0, numero = 0;
    std::string serie, vendedor, sucursal, usuario;
    int fecha = 0, hora = 0, cli = 0;
    bool cancelada = false, afectada = true, pdev = false, credito = false, facturada = false,
         entregado = false, tuvoCredito = false, deRemisiones = false;
    int fechaCanc = 0, idFactura = 0, moneda = 1;
    double paridad = 1.0;
    std::array<int, 5> desc{};
    long long subtotal = 0, iva = 0, impAd = 0, cargo1 = 0, ret = 0, retIva = 0, total = 0,
              pagado = 0, saldo = 0;
    int vence = 0, cxc = -1;
    std::vector<Partida> partidas;
};

struct Movimiento {
    int id = 0, folio = 0, fecha = 0, hora = 0, fechaPago = 0, moneda = 1, notaCredito = 0;
    std::string clave, concepto, concepto2, usuario;
    long long cargo = 0, pago = 0, montoTotal = 0, saldoAnt = 0, saldoAct = 0;
    int movimiento = 0;
};

struct RenglonCx {
    int id = 0, fecha = 0, vence = 0, numero = 0, moneda = 1;
    std::string clave;
    char tipo = 'F';
    long long saldo = 0, total = 0;
    bool abierta = true;
};

struct Compra {
    bool nd = false;
    int compra = 0, fecha = 0, hora = 0, prov = 0, moneda = 1, vence = 0, cxp = -1;
    std::string factura, sucursal, usuario;
    bool cancelada = false;
    double paridad = 1.0;
    long long subtotal = 0, iva = 0, impAd = 0, total = 0, pagado = 0, saldo = 0;
};

enum TipoEvento {
    kPago,
    kCancelacion,
    kDevolucion,
    kNotaCredito,
    kPagoCargo,
    kPagoCompra,
    kDevolucionProv
};

struct Evento {
    TipoEvento tipo;
    int kind = 0;         // document kind, for customer documents
    int indice = 0;       // index into the documents, charges or purchases
    long long monto = 0;  // planned amount (cents); 0 = the whole balance
};

class Simulacion {
  public:
    Simulacion(Escritores& c, const OpcionesDemo& op, ConteoFilas& conteos)
        : c_(c), op_(op), conteos_(conteos), az_(op.semilla), s_(op.escala) {
        fin_ = fechaDeTexto(kFechaFinalDemo);
        inicio_ = op.dias > 0 ? fin_ - op.dias + 1 : fechaDeTexto(kFechaInicialDemo);
        agenda_.resize(static_cast<size_t>(fin_ - inicio_ + 1));
    }

    void ejecuta();

  private:
    // --- helpers -----------------------------------------------------------
    void avisa(const std::string& t) {
        if (op_.progreso) op_.progreso(t);
    }
    std::string tabla(const std::string& t) const { return "`" + op_.baseEmpresa + "`." + t; }
    std::unique_ptr<Lote> lote(const std::string& t, const std::string& cols) {
        return std::make_unique<Lote>(c_, conteos_, tabla(t), cols);
    }
    int hora() { return static_cast<int>(az_.entre(8 * 3600, 20 * 3600)); }
    std::string telefono(const char* lada) {
        return junta({lada, std::to_string(az_.entre(3000, 3999)), " ",
                      std::to_string(az_.entre(1000, 9999))});
    }
    const std::string& usuario() { return elige(az_, kUsuarios); }
    double paridad(int moneda, int dia) const {
        if (moneda == 1) return 1.0;
        const int k = (dia * 7919) % 250;
        const double usd = 17.50 + k / 100.0;
        return moneda == 2 ? usd : usd + 1.35 + ((dia * 31) % 40) / 100.0;
    }
    void programa(int dia, const Evento& e) {
        if (dia > fin_) return;
        agenda_[static_cast<size_t>(dia - inicio_)].push_back(e);
    }
    int kardex(int prod, int dia, int hr, const char* mov, int documento, long long cantidad,
               const std::string& usuario, const std::string& sucursal = "01");

    // --- phases ------------------------------------------------------------
    void catalogos();
    void productos();
    void clientesYproveedores();
    void inventarioInicial();
    void dia(int d);
    void eventos(int d);
    void pagosDelDia(int d, std::vector<Evento>& pagos);
    void venta(int d, int kind);
    void facturaDeRemisiones(int d, int cli);
    void ticket(int d);
    void compra(int d, int prov, std::vector<int> prods, bool nd);
    void comprasDelDia(int d);
    void cargoMiscelaneo(int d);
    void cancelacion(int d, Documento& doc);
    void devolucion(int d, Documento& doc);
    void notaCredito(int d, Documento& doc);
    void pagoCompra(int d, Compra& cp, long long monto);
    void devolucionProv(int d, Compra& cp);
    void entrada(int d);
    void traspaso(int d);
    void ajuste(int d);
    void perdida(int d);
    void separacion(int d);
    void corte(int d);
    void bitacora(int d);
    void envases(int d);
    void cierre();
    void escribeDocumentos();
    void escribeEstados();

    long long totalizar(Documento& doc);
    Movimiento& movCli(int dia, int hr, const std::string& clave, int moneda, long long cargo,
                       long long pago, std::string concepto, const std::string& usr);
    Movimiento& movProv(int dia, int hr, const std::string& clave, int moneda, long long cargo,
                        long long pago, std::string concepto, const std::string& usr);
    void aplicacion(int folioPago, const Documento* doc, int folioCargo, long long cantidad,
                    long long saldoDespues, int moneda, int dia, int hr, int medio,
                    const std::string& cliente);
    void recibo(const Movimiento& mv);

    Escritores& c_;
    const OpcionesDemo& op_;
    ConteoFilas& conteos_;
    Azar az_;
    int s_;
    int inicio_ = 0, fin_ = 0;

    std::vector<Producto> prods_;
    std::vector<std::vector<int>> prodsPorClase_;
    std::vector<int> prodsVendibles_;
    std::vector<Cliente> clis_;
    std::vector<Proveedor> provs_;
    std::vector<std::string> vendedores_;
    std::vector<std::string> sucursales_ = {"01", "02", "03", "04"};
    std::vector<std::pair<int, std::string>> cortes_;  // product index of each cut, name

    std::array<std::vector<Documento>, 3> docs_;
    std::array<int, 3> folioDoc_{};
    std::vector<Movimiento> movsCli_, movsProv_;
    std::vector<RenglonCx> cxc_, cxp_;
    std::vector<Compra> compras_;
    std::vector<std::vector<Evento>> agenda_;
    std::map<std::pair<int, int>, std::vector<int>> remisionesPendientes_;  // (cli, moneda) -> idx

    int sigKardex_ = 1, sigFolioCli_ = 1, sigFolioProv_ = 1, sigRecibo_ = 1, sigTicket_ = 1,
        sigCompra_ = 1, sigCompraNd_ = 1, sigDevCte_ = 1, sigNota_ = 1, sigDevProv_ = 1,
        sigEntrada_ = 1, sigTraspaso_ = 1, sigAjuste_ = 1, sigAjusteRen_ = 1, sigPerdida_ = 1,
        sigSeparacion_ = 1, sigCorte_ = 1, sigAplic_ = 1, sigBitacora_ = 1, sigCheque_ = 1,
        sigEnvase_ = 1, sigGasto_ = 1, sigTicketId_ = 1, sigReciboId_ = 0;
    std::map<std::string, int> movsPorCuentaCli_, movsPorCuentaProv_;
    std::map<std::pair<int, int>, long long> envasesSaldo_;  // (cli, prod) -> thousandths
    std::map<std::pair<int, int>, int> envasesUlt_;

    std::unique_ptr<Lote> kardex_, tickets_, ticketsDet_, aplic_, recibos_, devCtes_, devCtesDet_,
        notas_, notasDet_, comprasDet_, comprasNdDet_, devProv_, devProvDet_, entradas_,
        entradasDet_, traspasos_, traspasosDet_, ajustes_, perdidas_, perdidasDet_, separa_,
        separaDet_, movCortes_, bitacora_, gastos_, edoctaspc_;
};

int Simulacion::kardex(int prod, int dia, int hr, const char* mov, int documento,
                       long long cantidad, const std::string& usr, const std::string& suc) {
    Producto& p = prods_[static_cast<size_t>(prod)];
    if (p.clase == 4) return 0;  // services hold no stock
    const long long antes = p.exist;
    p.exist += cantidad;
    const int id = sigKardex_++;
    kardex_->agrega(Renglon()
                        .n(id)
                        .t(p.clave)
                        .f(dia)
                        .h(hr)
                        .t(mov)
                        .n(documento)
                        .t(suc)
                        .q(cantidad)
                        .q(antes)
                        .q(p.exist)
                        .m(p.costo)
                        .m(p.costoProm)
                        .t(usr));
    return id;
}

// ---------------------------------------------------------------------------

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
            const std::array<long long, 4> umbral = {0, 5000000, 15000000, 40000000};
            const std::array<double, 4> pct = {1.0, 1.5, 2.0, 2.5};
            for (int r = 0; r < 4; ++r)
                com->agrega(Renglon()
                                .t(clave)
                                .n(r + 1)
                                .m(umbral[static_cast<size_t>(r)] * s_)
                                .x(pct[static_cast<size_t>(r)] + (i % 3) * 0.25, 2));
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
        p.email = az_.probable(0.7)
                      ? "ventas" + std::to_string(i) + "@proveedor" + std::to_string(i) + ".com.mx"
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
        c.email = az_.probable(0.6) ? base + std::to_string(i) + "@correo.com.mx" : "";
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

void Simulacion::inventarioInicial() {
    for (size_t i = 0; i < prods_.size(); ++i) {
        Producto& p = prods_[i];
        if (p.clase == 4 || p.clase == 3) continue;
        if (az_.probable(0.05)) continue;  // a few products start without stock or history
        const long long cant =
            (p.clase == 1 || p.clase == 2) ? az_.entre(50000, 400000) : az_.entre(10, 120) * 1000;
        kardex(static_cast<int>(i), inicio_, 8 * 3600, "INVENTARIO INICIAL", 0, cant, "ADMIN");
    }
}

// ---------------------------------------------------------------------------
// Statements
// ---------------------------------------------------------------------------

Movimiento& Simulacion::movCli(int dia, int hr, const std::string& clave, int moneda,
                               long long cargo, long long pago, std::string concepto,
                               const std::string& usr) {
    Movimiento mv;
    mv.id = static_cast<int>(movsCli_.size()) + 1;
    mv.folio = sigFolioCli_++;
    mv.fecha = dia;
    mv.fechaPago = dia;
    mv.hora = hr;
    mv.clave = clave;
    mv.moneda = moneda;
    mv.cargo = cargo;
    mv.pago = pago;
    mv.concepto = std::move(concepto);
    mv.usuario = usr;
    mv.montoTotal = cargo != 0 ? cargo : pago;
    mv.movimiento = ++movsPorCuentaCli_[clave];
    movsCli_.push_back(std::move(mv));
    return movsCli_.back();
}

Movimiento& Simulacion::movProv(int dia, int hr, const std::string& clave, int moneda,
                                long long cargo, long long pago, std::string concepto,
                                const std::string& usr) {
    Movimiento mv;
    mv.id = static_cast<int>(movsProv_.size()) + 1;
    mv.folio = sigFolioProv_++;
    mv.fecha = dia;
    mv.fechaPago = dia;
    mv.hora = hr;
    mv.clave = clave;
    mv.moneda = moneda;
    mv.cargo = cargo;
    mv.pago = pago;
    mv.concepto = std::move(concepto);
    mv.usuario = usr;
    mv.montoTotal = cargo != 0 ? cargo : pago;
    mv.movimiento = ++movsPorCuentaProv_[clave];
    movsProv_.push_back(std::move(mv));
    return movsProv_.back();
}

// medio: 0 cash, 1 own-bank cheque, 2 other-bank cheque, 3 cash and other-bank cheque,
// -1 none (credits that are not payments).
void Simulacion::aplicacion(int folioPago, const Documento* doc, int folioCargo, long long cantidad,
                            long long saldoDespues, int moneda, int dia, int hr, int medio,
                            const std::string& cliente) {
    long long efectivo = 0, chCuenta = 0, chOtra = 0;
    std::string banco, cheque;
    switch (medio) {
        case 0:
            efectivo = cantidad;
            break;
        case 1:
            chCuenta = cantidad;
            break;
        case 2:
            chOtra = cantidad;
            break;
        case 3:
            efectivo = cantidad / 2;
            chOtra = cantidad - efectivo;
            break;
        default:
            break;
    }
    if (chCuenta != 0 || chOtra != 0) {
        banco = elige(az_, kBancos);
        cheque = conCeros(az_.entre(1, 9999999), 7);
    }
    const int kind = doc ? doc->kind : -1;
    const int idDoc = doc ? doc->id : 0;
    aplic_->agrega(Renglon()
                       .n(sigAplic_++)
                       .n(folioPago)
                       .t(doc ? std::string(1, kLetraDoc[kind]) : std::string("C"))
                       .n(kind == kFactura ? idDoc : 0)
                       .n(kind == kRemision ? idDoc : 0)
                       .n(kind == kApartado ? idDoc : 0)
                       .n(doc ? 0 : folioCargo)
                       .n(kind == kFactura ? idDoc : 0)
                       .n(kind == kRemision ? idDoc : 0)
                       .n(kind == kApartado ? idDoc : 0)
                       .t(cliente)
                       .m(cantidad)
                       .n(moneda)
                       .m(cantidad)
                       .m(efectivo)
                       .m(chCuenta)
                       .m(chOtra)
                       .t(banco)
                       .t(cheque)
                       .m(saldoDespues)
                       .f(dia)
                       .h(hr)
                       .f(dia));
}

void Simulacion::recibo(const Movimiento& mv) {
    const int numero = sigRecibo_++;
    if (az_.probable(0.03)) return;  // the receipt was never captured
    int fecha = mv.fecha;
    if (az_.probable(0.02)) fecha += static_cast<int>(az_.entre(35, 70));  // captured out of range
    recibos_->agrega(Renglon()
                         .n(++sigReciboId_)
                         .n(numero)
                         .n(mv.id)
                         .f(fecha)
                         .t(mv.clave)
                         .m(mv.pago)
                         .n(az_.probable(0.03) ? 1 : 0)
                         .t(mv.usuario));
}

// ---------------------------------------------------------------------------
// Sales
// ---------------------------------------------------------------------------

long long Simulacion::totalizar(Documento& doc) {
    double factor = 1.0;
    for (int d : doc.desc)
        if (d != 0) factor *= 1.0 - d / 100.0;
    long long bruto = 0;
    for (const auto& p : doc.partidas)
        bruto += redondea(static_cast<double>(p.cant) * static_cast<double>(p.precioNeto) / 1000.0);
    doc.subtotal = redondea(static_cast<double>(bruto) * factor);
    doc.iva = redondea(static_cast<double>(doc.subtotal) * 0.16);
    doc.total = doc.subtotal + doc.iva + doc.impAd + doc.cargo1 + doc.ret + doc.retIva;
    return doc.total;
}

void Simulacion::venta(int d, int kind) {
    Documento doc;
    doc.kind = kind;
    doc.id = static_cast<int>(docs_[kind].size()) + 1;
    doc.cli = static_cast<int>(az_.entre(0, static_cast<long long>(clis_.size()) - 1));
    Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
    doc.fecha = d;
    doc.hora = hora();
    doc.sucursal = sucursales_[static_cast<size_t>(az_.entre(0, 2))];
    doc.serie =
        kind == kFactura ? (doc.sucursal == "02" ? "B" : "A") : (kind == kRemision ? "R" : "AP");
    doc.numero = ++folioDoc_[kind];
    doc.vendedor =
        az_.probable(0.05) ? "" : (cli.vendedor.empty() ? elige(az_, vendedores_) : cli.vendedor);
    doc.usuario = usuario();
    doc.moneda = (cli.monedaExtra != 0 && az_.probable(0.4)) ? cli.monedaExtra : 1;
    doc.paridad = paridad(doc.moneda, d);
    doc.credito = kind == kApartado || (cli.diasCredito > 0 && az_.probable(0.7));
    doc.afectada = kind != kApartado && !az_.probable(0.03);
    doc.pdev = kind == kFactura && az_.probable(0.04);
    if (az_.probable(0.15)) {
        doc.desc[0] = static_cast<int>(az_.entre(1, 3)) * 5;
        if (az_.probable(0.4)) doc.desc[1] = static_cast<int>(az_.entre(1, 5));
        if (az_.probable(0.1)) doc.desc[2] = 2;
        if (az_.probable(0.05)) doc.desc[4] = 1;
    }
    const int nLin = static_cast<int>(az_.entre(1, 6));
    std::vector<int> usados;
    for (int k = 0; k < nLin; ++k) {
        const bool servicio = az_.probable(0.04);
        int pi = servicio ? elige(az_, prodsPorClase_[4]) : elige(az_, prodsVendibles_);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        Producto& p = prods_[static_cast<size_t>(pi)];
        Partida pt;
        pt.prod = pi;
        pt.numPrecio = cli.numPrecio;
        pt.cant = (p.clase == 1 || p.clase == 2) ? az_.entre(500, 25000) : az_.entre(1, 12) * 1000;
        if (p.clase == 0 && az_.probable(0.1)) pt.cant *= 5;
        const double par = doc.paridad;
        pt.precio =
            redondea(static_cast<double>(p.precio[static_cast<size_t>(pt.numPrecio - 1)]) / par);
        pt.descuento = az_.probable(0.1) ? 5 : 0;
        pt.precioNeto = redondea(static_cast<double>(pt.precio) * (100 - pt.descuento) / 100.0);
        pt.costoProm = redondea(static_cast<double>(p.costoProm) / par);
        pt.paridadCompra = par;
        doc.partidas.push_back(pt);
    }
    if (az_.probable(0.08)) doc.impAd = 0;
    totalizar(doc);
    if (az_.probable(0.08)) doc.impAd = redondea(static_cast<double>(doc.subtotal) * 0.08);
    if (az_.probable(0.05)) doc.cargo1 = az_.entre(100, 600) * 100;
    if (kind == kFactura && cli.clasif == "GOBIERNO" && az_.probable(0.6)) {
        doc.ret = -redondea(static_cast<double>(doc.subtotal) * 0.0125);
        doc.retIva = -redondea(static_cast<double>(doc.iva) * 2.0 / 3.0);
    } else if (kind == kFactura && az_.probable(0.01)) {
        doc.ret = redondea(static_cast<double>(doc.subtotal) * 0.0125);  // captured with the sign
    }
    totalizar(doc);
    doc.vence = d + (doc.credito ? std::max(cli.diasCredito, kind == kApartado ? 60 : 15) : 0);
    doc.saldo = doc.total;

    // Stock leaves with the document when it is applied.
    if (doc.afectada)
        for (auto& pt : doc.partidas)
            pt.idKardex =
                kardex(pt.prod, d, doc.hora, kind == kFactura ? "VENTA FACTURA" : "VENTA REMISION",
                       doc.id, -pt.cant, doc.usuario, doc.sucursal);

    const std::string nombreDoc =
        std::string(kPalabraDoc[kind]) + " " + doc.serie + std::to_string(doc.numero);
    Movimiento& cargo = movCli(d, doc.hora, cli.clave, doc.moneda, doc.total, 0,
                               "CARGO POR " + nombreDoc, doc.usuario);
    cargo.concepto2 = doc.credito ? "A CREDITO" : "DE CONTADO";
    auto& lista = docs_[kind];
    if (!doc.credito) {
        // Cash sale: the payment follows on the same day.
        Movimiento& pago = movCli(d, doc.hora + 60, cli.clave, doc.moneda, 0, doc.total,
                                  "PAGO DE CONTADO " + nombreDoc, doc.usuario);
        doc.pagado = doc.total;
        doc.saldo = 0;
        const int medio = static_cast<int>(az_.entre(0, 3));
        aplicacion(pago.folio, &doc, 0, doc.total, 0, doc.moneda, d, doc.hora + 60, medio,
                   cli.clave);
        recibo(pago);
        cli.ultPago = d;
    } else {
        RenglonCx cx;
        cx.id = static_cast<int>(cxc_.size()) + 1;
        cx.clave = cli.clave;
        cx.fecha = d;
        cx.vence = doc.vence;
        cx.tipo = kLetraDoc[kind];
        cx.numero = doc.id;
        cx.saldo = doc.saldo;
        cx.total = doc.total;
        cx.moneda = doc.moneda;
        doc.cxc = static_cast<int>(cxc_.size());
        cxc_.push_back(cx);
        // Payment plan.
        const int idx = static_cast<int>(lista.size());
        if (kind == kApartado) {
            const int abonos = static_cast<int>(az_.entre(2, 5));
            for (int a = 1; a <= abonos; ++a)
                programa(d + 14 * a, {kPago, kind, idx, a == 4 ? 0 : doc.total / 4});
        } else {
            const double r = az_.unitario();
            if (r < 0.55) {
                programa(d + static_cast<int>(az_.entre(3, cli.diasCredito + 30)),
                         {kPago, kind, idx, 0});
            } else if (r < 0.75) {
                programa(d + static_cast<int>(az_.entre(3, 30)), {kPago, kind, idx, doc.total / 2});
                programa(d + static_cast<int>(az_.entre(31, 90)), {kPago, kind, idx, 0});
            } else if (r < 0.85) {
                programa(d + static_cast<int>(az_.entre(10, 45)),
                         {kPago, kind, idx, doc.total * 2 / 5});
            }
        }
    }
    const int idx = static_cast<int>(lista.size());
    if (kind != kApartado) {
        if (az_.probable(0.025))
            programa(d + static_cast<int>(az_.entre(0, 12)), {kCancelacion, kind, idx, 0});
        else if (doc.afectada && az_.probable(0.035))
            programa(d + static_cast<int>(az_.entre(1, 25)), {kDevolucion, kind, idx, 0});
        else if (doc.credito && az_.probable(0.015))
            programa(d + static_cast<int>(az_.entre(3, 20)), {kNotaCredito, kind, idx, 0});
    }
    if (kind == kRemision && doc.afectada)
        remisionesPendientes_[{doc.cli, doc.moneda}].push_back(idx);
    lista.push_back(std::move(doc));
}

// An invoice made from a customer's delivery notes: the notes keep the debt and
// the stock movement, so the invoice neither charges nor moves stock.
void Simulacion::facturaDeRemisiones(int d, int cli) {
    for (int moneda = 1; moneda <= 3; ++moneda) {
        auto it = remisionesPendientes_.find({cli, moneda});
        if (it == remisionesPendientes_.end()) continue;
        std::vector<int> tomadas;
        for (int ri : it->second) {
            const Documento& r = docs_[kRemision][static_cast<size_t>(ri)];
            if (!r.cancelada && !r.facturada && tomadas.size() < 4) tomadas.push_back(ri);
        }
        it->second.clear();
        if (tomadas.empty()) continue;
        Documento f;
        f.kind = kFactura;
        f.id = static_cast<int>(docs_[kFactura].size()) + 1;
        f.cli = cli;
        f.fecha = d;
        f.hora = hora();
        f.sucursal = "01";
        f.serie = "A";
        f.numero = ++folioDoc_[kFactura];
        f.moneda = moneda;
        f.paridad = paridad(moneda, d);
        f.afectada = false;
        f.deRemisiones = true;
        f.usuario = usuario();
        for (int ri : tomadas) {
            Documento& r = docs_[kRemision][static_cast<size_t>(ri)];
            r.facturada = true;
            r.idFactura = f.id;
            f.vendedor = r.vendedor;
            f.credito = f.credito || r.credito;
            f.subtotal += r.subtotal;
            f.iva += r.iva;
            f.impAd += r.impAd;
            f.cargo1 += r.cargo1;
            for (Partida p : r.partidas) {
                p.remision = r.id;
                p.idKardex = 0;
                p.devueltos = 0;
                if (r.desc[0] != 0 || r.desc[1] != 0 || r.desc[2] != 0 || r.desc[4] != 0) {
                    double factor = 1.0;
                    for (int x : r.desc)
                        if (x != 0) factor *= 1.0 - x / 100.0;
                    p.precioNeto = redondea(static_cast<double>(p.precioNeto) * factor);
                }
                f.partidas.push_back(p);
            }
        }
        f.total = f.subtotal + f.iva + f.impAd + f.cargo1;
        f.vence = d;
        f.saldo = 0;
        docs_[kFactura].push_back(std::move(f));
    }
}

void Simulacion::ticket(int d) {
    const int id = sigTicketId_++;
    const int hr = hora();
    const std::string suc = sucursales_[static_cast<size_t>(az_.entre(0, 2))];
    const std::string usr = az_.probable(0.5) ? "CAJA1" : "CAJA2";
    const bool cancelado = az_.probable(0.01);
    const int nLin = static_cast<int>(az_.entre(1, 4));
    long long subtotal = 0;
    std::vector<int> usados;
    int partida = 0;
    for (int k = 0; k < nLin; ++k) {
        const int pi = elige(az_, prodsVendibles_);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        Producto& p = prods_[static_cast<size_t>(pi)];
        const long long cant =
            (p.clase == 1 || p.clase == 2) ? az_.entre(250, 5000) : az_.entre(1, 4) * 1000;
        const long long precio = p.precio[0];
        const long long importe = redondea(static_cast<double>(cant) * precio / 1000.0);
        subtotal += importe;
        const int kx = cancelado ? 0 : kardex(pi, d, hr, "VENTA TICKET", id, -cant, usr, suc);
        ticketsDet_->agrega(Renglon()
                                .n(id)
                                .n(++partida)
                                .f(d)
                                .t(p.clave)
                                .t(p.descrip)
                                .q(cant)
                                .m(precio)
                                .m(precio)
                                .m(p.costoProm)
                                .n(kx));
    }
    const long long iva = redondea(static_cast<double>(subtotal) * 0.16);
    const long long total = subtotal + iva;
    const long long efectivo = (total / 5000 + 1) * 5000;
    tickets_->agrega(Renglon()
                         .n(id)
                         .n(sigTicket_++)
                         .t("T")
                         .f(d)
                         .h(hr)
                         .n(usr == "CAJA1" ? 1 : 2)
                         .t(az_.probable(0.2)
                                ? clis_[static_cast<size_t>(
                                            az_.entre(0, static_cast<long long>(clis_.size()) - 1))]
                                      .clave
                                : std::string())
                         .t(az_.probable(0.3) ? elige(az_, vendedores_) : std::string())
                         .t(suc)
                         .t(usr)
                         .n(cancelado ? 1 : 0)
                         .n(1)
                         .m(subtotal)
                         .m(iva)
                         .m(total)
                         .m(efectivo)
                         .m(efectivo - total)
                         .n(0));
}

// ---------------------------------------------------------------------------
// Events: payments, cancellations, returns, credit notes
// ---------------------------------------------------------------------------

void Simulacion::eventos(int d) {
    auto& hoy = agenda_[static_cast<size_t>(d - inicio_)];
    std::vector<Evento> pagos;
    for (const Evento& e : hoy) {
        switch (e.tipo) {
            case kPago:
            case kPagoCargo:
                pagos.push_back(e);
                break;
            case kCancelacion:
                cancelacion(d, docs_[e.kind][static_cast<size_t>(e.indice)]);
                break;
            case kDevolucion:
                devolucion(d, docs_[e.kind][static_cast<size_t>(e.indice)]);
                break;
            case kNotaCredito:
                notaCredito(d, docs_[e.kind][static_cast<size_t>(e.indice)]);
                break;
            case kPagoCompra: {
                Compra& cp = compras_[static_cast<size_t>(e.indice)];
                pagoCompra(d, cp, e.monto == 0 ? cp.saldo : std::min(e.monto, cp.saldo));
                break;
            }
            case kDevolucionProv:
                devolucionProv(d, compras_[static_cast<size_t>(e.indice)]);
                break;
        }
    }
    pagosDelDia(d, pagos);
    hoy.clear();
    hoy.shrink_to_fit();
}

void Simulacion::pagosDelDia(int d, std::vector<Evento>& pagos) {
    // One payment per customer and currency settles all that customer's documents due today.
    struct Parte {
        Documento* doc;
        RenglonCx* cx;
        int folioCargo;
        long long monto;
    };
    std::map<std::pair<int, int>, std::vector<Parte>> grupos;  // (customer, currency)
    for (const Evento& e : pagos) {
        if (e.tipo == kPago) {
            Documento& doc = docs_[e.kind][static_cast<size_t>(e.indice)];
            if (doc.cancelada || doc.saldo <= 0 || doc.cxc < 0) continue;
            const long long monto = e.monto == 0 ? doc.saldo : std::min(e.monto, doc.saldo);
            if (monto <= 0) continue;
            grupos[{doc.cli, doc.moneda}].push_back(
                {&doc, &cxc_[static_cast<size_t>(doc.cxc)], 0, monto});
        } else {
            RenglonCx& cx = cxc_[static_cast<size_t>(e.indice)];
            if (!cx.abierta || cx.saldo <= 0) continue;
            const long long monto = e.monto == 0 ? cx.saldo : std::min(e.monto, cx.saldo);
            const int cli = std::stoi(cx.clave.substr(1)) - 1;
            grupos[{cli, cx.moneda}].push_back({nullptr, &cx, cx.numero, monto});
        }
    }
    for (auto& [llave, partes] : grupos) {
        Cliente& cli = clis_[static_cast<size_t>(llave.first)];
        long long total = 0;
        for (const auto& p : partes) total += p.monto;
        const bool automatico = az_.probable(0.04);
        std::string concepto;
        if (automatico)
            concepto = "ABONO AUTOMATICO A CXC";
        else if (partes.size() > 1)
            concepto = "PAGO A VARIOS DOCUMENTOS";
        else if (partes[0].doc)
            concepto = std::string("PAGO A ") + kPalabraDoc[partes[0].doc->kind] + " " +
                       partes[0].doc->serie + std::to_string(partes[0].doc->numero);
        else
            concepto = "PAGO A CARGO " + std::to_string(partes[0].folioCargo);
        if (automatico && partes[0].doc)
            concepto += std::string(" ") + kPalabraDoc[partes[0].doc->kind] + " " +
                        partes[0].doc->serie + std::to_string(partes[0].doc->numero);
        // Some payments are captured days after they were received.
        int fecha = d;
        if (az_.probable(0.06)) fecha = std::max(inicio_, d - static_cast<int>(az_.entre(1, 4)));
        const int hr = hora();
        const std::string quien = automatico ? std::string("SISTEMA") : usuario();
        Movimiento& mv = movCli(fecha, hr, cli.clave, llave.second, 0, total, concepto, quien);
        if (az_.probable(0.1)) mv.fechaPago = fecha - static_cast<int>(az_.entre(1, 3));
        mv.concepto2 = automatico ? "" : "RECIBIDO EN " + elige(az_, sucursales_);
        const int medio = automatico ? -1 : static_cast<int>(az_.entre(0, 3));
        for (auto& p : partes) {
            p.cx->saldo -= p.monto;
            if (p.cx->saldo <= 0) p.cx->abierta = false;
            long long saldoDoc = p.cx->saldo;
            if (p.doc) {
                p.doc->saldo -= p.monto;
                p.doc->pagado += p.monto;
                saldoDoc = p.doc->saldo;
                if (p.doc->kind == kApartado && p.doc->saldo == 0) p.doc->entregado = true;
            }
            aplicacion(mv.folio, p.doc, p.folioCargo, p.monto, saldoDoc, llave.second, fecha, hr,
                       medio, cli.clave);
        }
        if (!automatico) recibo(mv);
        cli.ultPago = std::max(cli.ultPago, fecha);
        cli.puntos += total / 10000;
    }
}

void Simulacion::cancelacion(int d, Documento& doc) {
    if (doc.cancelada || doc.facturada || doc.tuvoCredito) return;
    Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
    doc.cancelada = true;
    doc.fechaCanc = d;
    const int hr = hora();
    const std::string usr = usuario();
    if (doc.afectada)
        for (const auto& pt : doc.partidas)
            kardex(pt.prod, d, hr,
                   doc.kind == kFactura ? "CANCELACION FACTURA" : "CANCELACION REMISION", doc.id,
                   pt.cant, usr, doc.sucursal);
    const std::string nombreDoc =
        std::string(kPalabraDoc[doc.kind]) + " " + doc.serie + std::to_string(doc.numero);
    movCli(d, hr, cli.clave, doc.moneda, 0, doc.total,
           "BONIFICACION POR CANCELACION DE " + nombreDoc, usr);
    if (doc.pagado > 0)
        movCli(d, hr + 30, cli.clave, doc.moneda, doc.pagado, 0,
               "DEVOLUCION DEL DINERO POR CANC. DE " + nombreDoc, usr);
    doc.saldo = 0;
    if (doc.cxc >= 0) {
        cxc_[static_cast<size_t>(doc.cxc)].saldo = 0;
        cxc_[static_cast<size_t>(doc.cxc)].abierta = false;
    }
}

void Simulacion::devolucion(int d, Documento& doc) {
    if (doc.cancelada || doc.partidas.empty()) return;
    Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
    const int id = sigDevCte_++;
    const int hr = hora();
    const std::string usr = usuario();
    const bool cancelada = az_.probable(0.06);
    double factor = 1.0;
    for (int x : doc.desc)
        if (x != 0) factor *= 1.0 - x / 100.0;
    long long bruto = 0;
    int partida = 0;
    for (auto& pt : doc.partidas) {
        if (partida > 0 && az_.probable(0.5)) continue;
        const Producto& p = prods_[static_cast<size_t>(pt.prod)];
        if (p.clase == 4) continue;
        const long long disponible = pt.cant - pt.devueltos;
        if (disponible <= 0) continue;
        long long cant = (p.clase == 1 || p.clase == 2)
                             ? std::max<long long>(100, disponible / 3)
                             : az_.entre(1, std::max<long long>(1, disponible / 1000)) * 1000;
        cant = std::min(cant, disponible);
        const int kx =
            cancelada ? 0
                      : kardex(pt.prod, d, hr, "DEVOLUCION CLIENTE", id, cant, usr, doc.sucursal);
        if (!cancelada) pt.devueltos += cant;
        bruto += redondea(static_cast<double>(cant) * pt.precioNeto / 1000.0);
        devCtesDet_->agrega(Renglon()
                                .n(id)
                                .n(++partida)
                                .t(p.clave)
                                .t(p.descrip)
                                .q(cant)
                                .m(pt.precioNeto)
                                .m(pt.costoProm)
                                .n(static_cast<long long>(&pt - doc.partidas.data()) + 1)
                                .n(kx));
    }
    if (partida == 0) {
        --sigDevCte_;
        return;
    }
    const long long subtotal = redondea(static_cast<double>(bruto) * factor);
    const long long iva = redondea(static_cast<double>(subtotal) * 0.16);
    const long long total = subtotal + iva;
    int nota = 0;
    const std::string nombreDoc =
        std::string(kPalabraDoc[doc.kind]) + " " + doc.serie + std::to_string(doc.numero);
    if (!cancelada && doc.cxc >= 0 && doc.saldo >= total) {
        // The return lowers what the customer owes, with or without a credit note.
        if (az_.probable(0.6)) {
            nota = sigNota_++;
            notas_->agrega(Renglon()
                               .n(nota)
                               .t("NC")
                               .f(d)
                               .h(hr)
                               .t(cli.clave)
                               .n(id)
                               .n(0)
                               .n(doc.moneda)
                               .x(doc.paridad, 4)
                               .m(subtotal)
                               .m(iva)
                               .m(total)
                               .t("DEVOLUCION No. " + std::to_string(id) + " DE " + nombreDoc)
                               .t(usr));
            notasDet_->agrega(Renglon()
                                  .n(nota)
                                  .n(1)
                                  .t(std::string(1, kLetraDoc[doc.kind]))
                                  .n(doc.id)
                                  .t("")
                                  .m(total));
        }
        Movimiento& mv =
            movCli(d, hr, cli.clave, doc.moneda, 0, total,
                   "DEVOLUCION CTES. No. " + std::to_string(id) + " DE " + nombreDoc, usr);
        mv.notaCredito = nota;
        doc.saldo -= total;
        doc.tuvoCredito = true;
        RenglonCx& cx = cxc_[static_cast<size_t>(doc.cxc)];
        cx.saldo -= total;
        if (cx.saldo <= 0) cx.abierta = false;
        aplicacion(mv.folio, &doc, 0, total, doc.saldo, doc.moneda, d, hr, -1, cli.clave);
    }
    devCtes_->agrega(Renglon()
                         .n(id)
                         .n(id)
                         .t("D")
                         .f(d)
                         .h(hr)
                         .t(cli.clave)
                         .t(std::string(1, kLetraDoc[doc.kind]))
                         .n(doc.id)
                         .n(nota)
                         .n(cancelada ? 1 : 0)
                         .n(doc.moneda)
                         .x(doc.paridad, 4)
                         .n(doc.desc[0])
                         .n(doc.desc[1])
                         .n(doc.desc[2])
                         .n(doc.desc[3])
                         .n(doc.desc[4])
                         .m(subtotal)
                         .m(iva)
                         .m(total)
                         .t(usr)
                         .t(az_.probable(0.5) ? "MERCANCIA DAÑADA" : "NO ERA LO SOLICITADO"));
}

void Simulacion::notaCredito(int d, Documento& doc) {
    if (doc.cancelada || doc.cxc < 0) return;
    Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
    const long long total = std::min(doc.saldo, redondea(static_cast<double>(doc.total) * 0.05));
    if (total <= 0) return;
    const int nota = sigNota_++;
    const int hr = hora();
    const std::string usr = usuario();
    const bool cancelada = az_.probable(0.1);
    const long long subtotal = redondea(static_cast<double>(total) / 1.16);
    const std::string nombreDoc =
        std::string(kPalabraDoc[doc.kind]) + " " + doc.serie + std::to_string(doc.numero);
    notas_->agrega(Renglon()
                       .n(nota)
                       .t("NC")
                       .f(d)
                       .h(hr)
                       .t(cli.clave)
                       .n(0)
                       .n(cancelada ? 1 : 0)
                       .n(doc.moneda)
                       .x(doc.paridad, 4)
                       .m(subtotal)
                       .m(total - subtotal)
                       .m(total)
                       .t("DESCUENTO POR PRONTO PAGO " + nombreDoc)
                       .t(usr));
    notasDet_->agrega(
        Renglon().n(nota).n(1).t(std::string(1, kLetraDoc[doc.kind])).n(doc.id).t("").m(total));
    if (cancelada) return;
    Movimiento& mv = movCli(d, hr, cli.clave, doc.moneda, 0, total,
                            "NOTA DE CREDITO No. " + std::to_string(nota), usr);
    mv.notaCredito = nota;
    doc.saldo -= total;
    doc.tuvoCredito = true;
    RenglonCx& cx = cxc_[static_cast<size_t>(doc.cxc)];
    cx.saldo -= total;
    if (cx.saldo <= 0) cx.abierta = false;
    aplicacion(mv.folio, &doc, 0, total, doc.saldo, doc.moneda, d, hr, -1, cli.clave);
}

void Simulacion::cargoMiscelaneo(int d) {
    const int ci = static_cast<int>(az_.entre(0, static_cast<long long>(clis_.size()) - 1));
    Cliente& cli = clis_[static_cast<size_t>(ci)];
    if (cli.diasCredito == 0) return;
    const long long monto = az_.entre(50, 1500) * 100;
    const int hr = hora();
    const char* concepto =
        az_.probable(0.6) ? "CARGO POR INTERESES MORATORIOS" : "CARGO POR CHEQUE DEVUELTO";
    const std::string quien = usuario();
    Movimiento& mv = movCli(d, hr, cli.clave, 1, monto, 0, concepto, quien);
    RenglonCx cx;
    cx.id = static_cast<int>(cxc_.size()) + 1;
    cx.clave = cli.clave;
    cx.fecha = d;
    cx.vence = d + 15;
    cx.tipo = 'C';
    cx.numero = mv.folio;
    cx.saldo = monto;
    cx.total = monto;
    cxc_.push_back(cx);
    if (az_.probable(0.6))
        programa(d + static_cast<int>(az_.entre(5, 40)),
                 {kPagoCargo, 0, static_cast<int>(cxc_.size()) - 1, 0});
}

// ---------------------------------------------------------------------------
// Purchases and suppliers
// ---------------------------------------------------------------------------

void Simulacion::compra(int d, int prov, std::vector<int> lista, bool nd) {
    Proveedor& pv = provs_[static_cast<size_t>(prov)];
    Compra cp;
    cp.nd = nd;
    cp.compra = nd ? sigCompraNd_++ : sigCompra_++;
    cp.fecha = d;
    cp.hora = hora();
    cp.prov = prov;
    cp.moneda = pv.moneda;
    cp.paridad = paridad(pv.moneda, d);
    cp.sucursal = "04";
    cp.usuario = usuario();
    cp.factura = nd ? "ND-" + std::to_string(az_.entre(1000, 99999))
                    : "F-" + std::to_string(az_.entre(10000, 999999));
    cp.cancelada = az_.probable(0.02);
    cp.vence = d + pv.diasCredito;
    auto& det = nd ? comprasNdDet_ : comprasDet_;
    int partida = 0;
    for (int pi : lista) {
        Producto& p = prods_[static_cast<size_t>(pi)];
        const long long cant = std::max<long long>(p.minimo * 3, 10000) + az_.entre(0, 20) * 1000;
        // Suppliers' prices move around the product's cost, with 4 % a year of inflation.
        const double inflacion = 1.0 + 0.04 * (d - inicio_) / 365.0;
        const long long costo =
            redondea(static_cast<double>(p.costoBase) * inflacion * (0.96 + az_.unitario() * 0.08));
        int kx = 0;
        if (!cp.cancelada) {
            // Average cost weighs the stock on hand with the purchase.
            const long long exist = std::max<long long>(p.exist, 0);
            p.costoProm = redondea(
                (static_cast<double>(exist) * p.costoProm + static_cast<double>(cant) * costo) /
                static_cast<double>(exist + cant));
            p.costo = costo;
            kx = kardex(pi, d, cp.hora, nd ? "COMPRA ND" : "COMPRA", cp.compra, cant, cp.usuario,
                        cp.sucursal);
        }
        const long long costoDoc = redondea(static_cast<double>(costo) / cp.paridad);
        cp.subtotal += redondea(static_cast<double>(cant) * costoDoc / 1000.0);
        det->agrega(
            Renglon().n(cp.compra).n(++partida).t(p.clave).t(p.descrip).q(cant).m(costoDoc).n(0).n(
                kx));
    }
    cp.iva = nd ? 0 : redondea(static_cast<double>(cp.subtotal) * 0.16);
    cp.impAd = az_.probable(0.05) ? redondea(static_cast<double>(cp.subtotal) * 0.03) : 0;
    cp.total = cp.subtotal + cp.iva + cp.impAd;
    cp.saldo = cp.total;
    const int idx = static_cast<int>(compras_.size());
    if (cp.cancelada) {
        cp.saldo = 0;
    } else {
        movProv(d, cp.hora, pv.clave, cp.moneda, cp.total, 0,
                std::string(nd ? "CARGO POR COMPRA ND " : "CARGO POR COMPRA ") + cp.factura,
                cp.usuario);
        RenglonCx cx;
        cx.id = static_cast<int>(cxp_.size()) + 1;
        cx.clave = pv.clave;
        cx.fecha = d;
        cx.vence = cp.vence;
        cx.tipo = nd ? 'N' : 'M';
        cx.numero = cp.compra;
        cx.saldo = cp.total;
        cx.total = cp.total;
        cx.moneda = cp.moneda;
        cp.cxp = static_cast<int>(cxp_.size());
        cxp_.push_back(cx);
        const double r = az_.unitario();
        if (r < 0.7) {
            programa(d + static_cast<int>(az_.entre(5, pv.diasCredito + 20)),
                     {kPagoCompra, 0, idx, 0});
        } else if (r < 0.85) {
            programa(d + static_cast<int>(az_.entre(5, 30)), {kPagoCompra, 0, idx, cp.total / 2});
        }
        if (az_.probable(0.03))
            programa(d + static_cast<int>(az_.entre(1, 4)), {kDevolucionProv, 0, idx, 0});
    }
    compras_.push_back(std::move(cp));
}

void Simulacion::comprasDelDia(int d) {
    // Replenish what runs short, one purchase per supplier.
    std::map<int, std::vector<int>> porProveedor;
    for (size_t i = 0; i < prods_.size(); ++i) {
        const Producto& p = prods_[i];
        if (p.clase == 4 || p.clase == 3) continue;
        if (p.exist < p.minimo && az_.probable(0.5)) {
            const int prov = std::stoi(p.prov1.substr(1)) - 1;
            auto& v = porProveedor[prov];
            if (v.size() < 10) v.push_back(static_cast<int>(i));
        }
    }
    for (auto& [prov, lista] : porProveedor) compra(d, prov, lista, az_.probable(0.2));
}

void Simulacion::pagoCompra(int d, Compra& cp, long long monto) {
    if (cp.cancelada || monto <= 0 || cp.cxp < 0) return;
    Proveedor& pv = provs_[static_cast<size_t>(cp.prov)];
    const int hr = hora();
    const std::string quien = usuario();
    movProv(d, hr, pv.clave, cp.moneda, 0, monto,
            std::string("PAGO A PROVEEDOR ") + (cp.nd ? "COMPRA ND " : "COMPRA ") + cp.factura,
            quien);
    cp.saldo -= monto;
    cp.pagado += monto;
    RenglonCx& cx = cxp_[static_cast<size_t>(cp.cxp)];
    cx.saldo -= monto;
    if (cx.saldo <= 0) cx.abierta = false;
    pv.ultPago = d;
}

void Simulacion::devolucionProv(int d, Compra& cp) {
    if (cp.cancelada || cp.nd) return;
    Proveedor& pv = provs_[static_cast<size_t>(cp.prov)];
    const int id = sigDevProv_++;
    const int hr = hora();
    const std::string usr = usuario();
    // Return part of one product of the purchase.
    const int pi = elige(az_, prodsPorClase_[0]);
    Producto& p = prods_[static_cast<size_t>(pi)];
    const long long cant = az_.entre(1, 5) * 1000;
    const long long costo = redondea(static_cast<double>(p.costo) / cp.paridad);
    const long long subtotal = redondea(static_cast<double>(cant) * costo / 1000.0);
    const long long iva = redondea(static_cast<double>(subtotal) * 0.16);
    const long long total = subtotal + iva;
    const int kx = kardex(pi, d, hr, "DEVOLUCION A PROVEEDOR", id, -cant, usr, "04");
    devProvDet_->agrega(Renglon().n(id).n(1).t(p.clave).t(p.descrip).q(cant).m(costo).n(kx));
    devProv_->agrega(Renglon()
                         .n(id)
                         .n(id)
                         .f(d)
                         .h(hr)
                         .t(pv.clave)
                         .n(cp.compra)
                         .n(0)
                         .n(cp.moneda)
                         .m(subtotal)
                         .m(iva)
                         .m(total)
                         .t(usr)
                         .t("MERCANCIA DEFECTUOSA"));
    if (cp.cxp >= 0 && cp.saldo >= total) {
        movProv(d, hr, pv.clave, cp.moneda, 0, total,
                "DEVOLUCION PROV. No. " + std::to_string(id) + " COMPRA " + cp.factura, usr);
        cp.saldo -= total;
        RenglonCx& cx = cxp_[static_cast<size_t>(cp.cxp)];
        cx.saldo -= total;
        if (cx.saldo <= 0) cx.abierta = false;
    }
}

// ---------------------------------------------------------------------------
// Inventory documents
// ---------------------------------------------------------------------------

void Simulacion::entrada(int d) {
    const int id = sigEntrada_++;
    const int hr = hora();
    const std::string usr = usuario();
    const std::string destino = sucursales_[static_cast<size_t>(az_.entre(0, 3))];
    const bool afectada = az_.probable(0.85);
    const int nLin = static_cast<int>(az_.entre(1, 7));
    std::vector<int> usados;
    int partida = 0;
    for (int k = 0; k < nLin; ++k) {
        const int pi = elige(az_, prodsPorClase_[0]);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        const Producto& p = prods_[static_cast<size_t>(pi)];
        const long long cant = az_.entre(1, 30) * 1000;
        const long long precio =
            redondea(static_cast<double>(p.costo) * (0.95 + az_.unitario() * 0.1));
        const int kx = afectada ? kardex(pi, d, hr, "ENTRADA", id, cant, usr, destino) : 0;
        entradasDet_->agrega(
            Renglon().n(id).n(++partida).t(p.clave).t(p.descrip).q(cant).m(precio).n(kx));
    }
    entradas_->agrega(Renglon()
                          .n(id)
                          .f(d)
                          .h(hr)
                          .t(destino)
                          .t(elige(az_, provs_).clave)
                          .t(usr)
                          .n(afectada ? 1 : 0)
                          .t(afectada ? "" : "PENDIENTE DE REVISAR"));
}

void Simulacion::traspaso(int d) {
    const int id = sigTraspaso_++;
    const int hr = hora();
    const int o = static_cast<int>(az_.entre(0, 3));
    int de = static_cast<int>(az_.entre(0, 2));
    if (de >= o) ++de;
    const double r = az_.unitario();
    const std::string serie = r < 0.45 ? "A" : (r < 0.8 ? "B" : "");
    const int nLin = static_cast<int>(az_.entre(1, 6));
    std::vector<int> usados;
    int partida = 0;
    for (int k = 0; k < nLin; ++k) {
        const int pi = elige(az_, prodsPorClase_[0]);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        const Producto& p = prods_[static_cast<size_t>(pi)];
        traspasosDet_->agrega(Renglon()
                                  .n(id)
                                  .n(++partida)
                                  .t(p.clave)
                                  .t(p.descrip)
                                  .q(az_.entre(1, 20) * 1000)
                                  .m(p.costo)
                                  .n(0));
    }
    const bool cancelado = az_.probable(0.06);
    traspasos_->agrega(Renglon()
                           .n(id)
                           .t(serie)
                           .f(d)
                           .h(hr)
                           .t(sucursales_[static_cast<size_t>(o)])
                           .t(sucursales_[static_cast<size_t>(de)])
                           .t(usuario())
                           .n(cancelado ? 1 : 0)
                           .n(cancelado ? 0 : 1)
                           .t(cancelado ? "CANCELADO POR ERROR DE CAPTURA" : ""));
}

void Simulacion::ajuste(int d) {
    const int folio = sigAjuste_++;
    const int hr = hora();
    const std::string usr = usuario();
    const int nLin = static_cast<int>(az_.entre(1, 4));
    for (int k = 0; k < nLin; ++k) {
        const int pi = elige(az_, prodsPorClase_[0]);
        Producto& p = prods_[static_cast<size_t>(pi)];
        const long long antes = p.exist;
        const long long fisica = std::max<long long>(0, antes + az_.entre(-5, 3) * 1000);
        const long long dif = fisica - antes;
        const int kx = kardex(pi, d, hr, "AJUSTE", folio, dif, usr);
        ajustes_->agrega(Renglon()
                             .n(sigAjusteRen_++)
                             .n(folio)
                             .f(d)
                             .h(hr)
                             .t(p.clave)
                             .t(p.descrip)
                             .t("01")
                             .t(usr)
                             .q(antes)
                             .q(fisica)
                             .q(dif)
                             .m(p.costo)
                             .m(p.precio[0])
                             .t(dif < 0 ? "FALTANTE EN CONTEO FISICO" : "SOBRANTE EN CONTEO FISICO")
                             .n(kx));
    }
}

void Simulacion::perdida(int d) {
    const int id = sigPerdida_++;
    const int hr = hora();
    const std::string usr = usuario();
    const int nLin = static_cast<int>(az_.entre(1, 3));
    std::vector<int> usados;
    int partida = 0;
    for (int k = 0; k < nLin; ++k) {
        const int pi =
            az_.probable(0.2) ? elige(az_, prodsPorClase_[2]) : elige(az_, prodsPorClase_[0]);
        if (std::find(usados.begin(), usados.end(), pi) != usados.end()) continue;
        usados.push_back(pi);
        const Producto& p = prods_[static_cast<size_t>(pi)];
        const long long cant = p.clase == 2 ? az_.entre(200, 3000) : az_.entre(1, 3) * 1000;
        const int kx = kardex(pi, d, hr, "PERDIDA", id, -cant, usr);
        perdidasDet_->agrega(Renglon()
                                 .n(id)
                                 .n(++partida)
                                 .t(p.clave)
                                 .t(p.descrip)
                                 .q(cant)
                                 .m(p.costo)
                                 .t(p.clase == 2 ? "CADUCIDAD" : "ROTURA")
                                 .n(kx));
    }
    perdidas_->agrega(Renglon()
                          .n(id)
                          .f(d)
                          .h(hr)
                          .t(sucursales_[static_cast<size_t>(az_.entre(0, 2))])
                          .t(usr)
                          .t("MERMA REGISTRADA EN PISO DE VENTA"));
}

void Simulacion::separacion(int d) {
    const auto& metales = prodsPorClase_[1];
    int origen = -1;
    std::vector<int> destinos;
    for (int pi : metales) {
        if (prods_[static_cast<size_t>(pi)].descrip.rfind("CHATARRA MIXTA", 0) == 0)
            origen = pi;
        else
            destinos.push_back(pi);
    }
    if (origen < 0 || destinos.empty()) return;
    const int id = sigSeparacion_++;
    const int hr = hora();
    const std::string usr = usuario();
    const long long peso = az_.entre(50, 800) * 1000;
    Producto& po = prods_[static_cast<size_t>(origen)];
    kardex(origen, d, hr, "SEPARACION METALES", id, -peso, usr);
    long long resto = peso - peso / 20;  // about 5 % is lost
    int partida = 0;
    const int n = static_cast<int>(az_.entre(2, static_cast<long long>(destinos.size())));
    for (int k = 0; k < n && resto > 0; ++k) {
        const int pi = destinos[static_cast<size_t>(k)];
        const long long cant = k == n - 1 ? resto : resto * az_.entre(20, 60) / 100;
        resto -= cant;
        kardex(pi, d, hr, "SEPARACION METALES", id, cant, usr);
        separaDet_->agrega(Renglon()
                               .n(id)
                               .n(++partida)
                               .t(prods_[static_cast<size_t>(pi)].clave)
                               .q(cant)
                               .m(prods_[static_cast<size_t>(pi)].costo));
    }
    separa_->agrega(
        Renglon().n(id).f(d).h(hr).t(usr).t(po.clave).q(peso).m(po.costo).q(peso / 20).t(""));
}

void Simulacion::corte(int d) {
    if (cortes_.empty()) return;
    const auto& carnes = prodsPorClase_[2];
    const int origen = carnes.front();  // the carcass
    const size_t c = static_cast<size_t>(az_.entre(0, static_cast<long long>(cortes_.size()) - 1));
    const int destino = cortes_[c].first;
    const int hr = hora();
    const std::string usr = usuario();
    const long long pesoOrigen = az_.entre(5000, 60000);
    const long long merma = pesoOrigen * az_.entre(3, 12) / 100;
    const long long cant = pesoOrigen - merma;
    const int id = sigCorte_++;
    kardex(origen, d, hr, "CORTE DE CARNE", id, -pesoOrigen, usr);
    kardex(destino, d, hr, "CORTE DE CARNE", id, cant, usr);
    movCortes_->agrega(Renglon()
                           .n(id)
                           .f(d)
                           .h(hr)
                           .n(static_cast<long long>(c) + 1)
                           .t(usr)
                           .t(prods_[static_cast<size_t>(origen)].clave)
                           .t(prods_[static_cast<size_t>(destino)].clave)
                           .q(pesoOrigen)
                           .q(cant)
                           .q(merma)
                           .m(prods_[static_cast<size_t>(origen)].costo)
                           .t(""));
}

void Simulacion::bitacora(int d) {
    const int activos = 3 + std::min(s_, 5);
    for (int u = 0; u < activos; ++u) {
        const std::string& usr = kUsuarios[static_cast<size_t>(u) % kUsuarios.size()];
        if (az_.probable(0.15)) continue;  // not everybody works every day
        const std::string& equipo = kEquipos[static_cast<size_t>(u) % kEquipos.size()];
        const std::string& version =
            kVersiones[d > inicio_ + 400 ? 2 : (d > inicio_ + 200 ? 1 : 0)];
        int hr = static_cast<int>(az_.entre(8 * 3600, 9 * 3600));
        auto graba = [&](int registro, const char* accion, const std::string& llave,
                         const std::string& adicionales) {
            bitacora_->agrega(Renglon()
                                  .n(sigBitacora_++)
                                  .f(d)
                                  .h(hr)
                                  .cod(usr, "418")
                                  .t(accion)
                                  .n(registro)
                                  .cod(llave, "184")
                                  .cod(adicionales, "184")
                                  .cod(version, "527")
                                  .cod(equipo, "527"));
        };
        graba(180, "ACCESO", "", "");
        const int acciones = static_cast<int>(az_.entre(1, 4));
        for (int k = 0; k < acciones; ++k) {
            hr += static_cast<int>(az_.entre(300, 7200));
            const double r = az_.unitario();
            if (r < 0.08) {
                // A structure that the general database does not describe.
                const int registro = static_cast<int>(az_.entre(990, 995));
                graba(registro, "CONSULTA", "MODULO " + std::to_string(az_.entre(1, 9)),
                      "CONSULTA");
            } else {
                const auto& e = kEstructuras[static_cast<size_t>(
                    az_.entre(0, static_cast<long long>(kEstructuras.size()) - 3))];
                const char* accion =
                    r < 0.35 ? "ALTA" : (r < 0.6 ? "CAMBIO" : (r < 0.7 ? "BAJA" : "IMPRESION"));
                // The action word leads the additional data, so that the log report's
                // action filters find it in the composed concept.
                const std::string llave =
                    e.first == 156 ? "adsdcm.rpt" : "FOLIO " + std::to_string(az_.entre(1, 9000));
                std::string adicionales = accion;
                if (r < 0.5) adicionales += " TOTAL " + textoCentavos(az_.entre(1000, 5000000));
                graba(e.first, accion, llave, adicionales);
            }
        }
        hr = std::max(hr, 17 * 3600) + static_cast<int>(az_.entre(0, 3 * 3600));
        graba(181, "SALIDA", "", "");
    }
}

void Simulacion::envases(int d) {
    const auto& lista = prodsPorClase_[3];
    if (lista.empty()) return;
    const int ci = static_cast<int>(az_.entre(0, static_cast<long long>(clis_.size()) / 10));
    const int pi = elige(az_, lista);
    long long& saldo = envasesSaldo_[{ci, pi}];
    const bool presta = saldo <= 0 || az_.probable(0.55);
    const long long cant =
        presta ? az_.entre(1, 10) * 1000 : std::min(saldo, az_.entre(1, 5) * 1000);
    const long long antes = saldo;
    saldo += presta ? cant : -cant;
    envasesUlt_[{ci, pi}] = d;
    edoctaspc_->agrega(Renglon()
                           .n(sigEnvase_++)
                           .f(d)
                           .h(hora())
                           .t(clis_[static_cast<size_t>(ci)].clave)
                           .t(prods_[static_cast<size_t>(pi)].clave)
                           .t(presta ? "PRESTAMO DE ENVASE" : "DEVOLUCION DE ENVASE")
                           .t("REM " + std::to_string(az_.entre(1, 9000)))
                           .q(presta ? cant : 0)
                           .q(presta ? 0 : cant)
                           .q(antes)
                           .q(saldo)
                           .t(usuario()));
}

void Simulacion::dia(int d) {
    eventos(d);
    const int dow = (d + 4) % 7;  // 0 Sunday
    const double factor = dow == 0 ? 0.35 : (dow == 6 ? 0.7 : 1.0);
    // A count with the given mean: uniform over 0..2k for the whole part k, plus
    // one more with the probability of the fraction.
    auto cuantos = [&](double media) {
        const double m = media * s_ * factor;
        const long long k = static_cast<long long>(m);
        const long long extra = az_.probable(m - static_cast<double>(k)) ? 1 : 0;
        return static_cast<int>(az_.entre(0, 2 * k) + extra);
    };
    comprasDelDia(d);
    for (int k = cuantos(9.0); k > 0; --k) venta(d, kFactura);
    for (int k = cuantos(7.0); k > 0; --k) venta(d, kRemision);
    for (int k = cuantos(0.4); k > 0; --k) venta(d, kApartado);
    for (int k = cuantos(20.0); k > 0; --k) ticket(d);
    if ((d - inicio_) % 15 == 14) {
        std::vector<int> clientes;
        for (const auto& [llave, lista] : remisionesPendientes_)
            if (!lista.empty() && az_.probable(0.12)) clientes.push_back(llave.first);
        std::sort(clientes.begin(), clientes.end());
        clientes.erase(std::unique(clientes.begin(), clientes.end()), clientes.end());
        for (int c : clientes) facturaDeRemisiones(d, c);
    }
    for (int k = cuantos(0.25); k > 0; --k) cargoMiscelaneo(d);
    if (az_.probable(0.15 * factor)) {
        // Payments that nobody could match to a customer.
        const int hr = hora();
        const long long monto = az_.entre(500, 20000) * 100;
        movCli(d, hr, "", 1, 0, monto, "DEPOSITO NO IDENTIFICADO", "ADMIN").concepto2 =
            "DEPOSITO BANCARIO";
    }
    for (int k = cuantos(0.15); k > 0; --k) {
        const int pv = static_cast<int>(az_.entre(0, static_cast<long long>(provs_.size()) - 1));
        std::vector<int> lista;
        for (int j = static_cast<int>(az_.entre(1, 6)); j > 0; --j)
            lista.push_back(elige(az_, prodsPorClase_[0]));
        std::sort(lista.begin(), lista.end());
        lista.erase(std::unique(lista.begin(), lista.end()), lista.end());
        compra(d, pv, lista, az_.probable(0.25));
    }
    if (az_.probable(0.05 * factor)) {
        Proveedor& pv =
            provs_[static_cast<size_t>(az_.entre(0, static_cast<long long>(provs_.size()) - 1))];
        const long long monto = az_.entre(200, 3000) * 100;
        const int hr = hora();
        const std::string quien = usuario();
        Movimiento& mv = movProv(d, hr, pv.clave, pv.moneda, monto, 0, "CARGO POR FLETE", quien);
        RenglonCx cx;
        cx.id = static_cast<int>(cxp_.size()) + 1;
        cx.clave = pv.clave;
        cx.fecha = d;
        cx.vence = d + 30;
        cx.tipo = 'C';
        cx.numero = mv.folio;
        cx.saldo = monto;
        cx.total = monto;
        cx.moneda = pv.moneda;
        cxp_.push_back(cx);
    }
    for (int k = cuantos(0.8); k > 0; --k) entrada(d);
    for (int k = cuantos(0.7); k > 0; --k) traspaso(d);
    for (int k = cuantos(0.3); k > 0; --k) ajuste(d);
    for (int k = cuantos(0.25); k > 0; --k) perdida(d);
    for (int k = cuantos(0.08); k > 0; --k) separacion(d);
    for (int k = cuantos(1.2); k > 0; --k) corte(d);
    for (int k = cuantos(0.3); k > 0; --k) envases(d);
    for (int k = cuantos(1.5); k > 0; --k) {
        const bool pdv = az_.probable(0.4);
        const std::array<const char*, 6> conceptos = {
            "PAPELERIA", "LUZ", "AGUA", "GASOLINA", "MANTENIMIENTO", "COMIDA DEL PERSONAL"};
        gastos_->agrega(Renglon()
                            .n(sigGasto_++)
                            .f(d)
                            .h(hora())
                            .t(conceptos[static_cast<size_t>(az_.entre(0, 5))])
                            .m(az_.entre(50, 3000) * 100)
                            .n(pdv ? 1 : 0)
                            .t(sucursales_[static_cast<size_t>(az_.entre(0, 2))])
                            .t(pdv ? "CAJA1" : "ADMIN"));
    }
    bitacora(d);
}

// ---------------------------------------------------------------------------
// Final writing
// ---------------------------------------------------------------------------

void Simulacion::escribeDocumentos() {
    const std::string colsDoc =
        "Id,{num}Factura,Serie,Fecha,Hora,Cliente,Vendedor,Sucursal,Usuario,Cancelada,"
        "FechaCancelacion,Afectada,PdeV,{extra}Moneda,IdMoneda,Paridad,Desc1,Desc2,Desc3,Desc4,"
        "Desc5,Subtotal,IVA,ImpuestoAd,Cargo1Cantidad,Cargo2Cantidad,Cargo3Cantidad,Retencion,"
        "RetencionIVA,Importe,Total,Pagado,Saldo,Vence,Observaciones";
    for (int kind = 0; kind < 3; ++kind) {
        std::string cols = colsDoc;
        const std::string num =
            kind == kRemision ? "Remision," : (kind == kApartado ? "Apartado," : "");
        const std::string extra = kind == kFactura    ? "Credito,"
                                  : kind == kRemision ? "Credito,Facturada,IdFactura,"
                                                      : "Entregado,";
        cols.replace(cols.find("{num}"), 5, num);
        cols.replace(cols.find("{extra}"), 7, extra);
        auto enc = lote(kTablaDoc[kind], cols);
        std::string colsDet =
            "Id,Partida,Producto,Descripcion,Cantidad,Devueltos,Precio,PrecioNeto,Descuento,IVA,"
            "CostoPromedio,ParidadCompra,NumeroDePrecio,IdKardex";
        if (kind != kApartado) colsDet += ",Remision";
        auto det = lote(std::string(kTablaDoc[kind]) + "detalle", colsDet);
        for (const Documento& doc : docs_[kind]) {
            const Cliente& cli = clis_[static_cast<size_t>(doc.cli)];
            Renglon r;
            r.n(doc.id);
            if (kind != kFactura) r.n(doc.numero);
            r.n(doc.numero)
                .t(doc.serie)
                .f(doc.fecha)
                .h(doc.hora)
                .t(cli.clave)
                .t(doc.vendedor)
                .t(doc.sucursal)
                .t(doc.usuario)
                .n(doc.cancelada ? 1 : 0);
            if (doc.cancelada)
                r.f(doc.fechaCanc);
            else
                r.cero();
            r.n(doc.afectada ? 1 : 0).n(doc.pdev ? 1 : 0);
            if (kind == kFactura)
                r.n(doc.credito ? 1 : 0);
            else if (kind == kRemision)
                r.n(doc.credito ? 1 : 0).n(doc.facturada ? 1 : 0).n(doc.idFactura);
            else
                r.n(doc.entregado ? 1 : 0);
            r.n(doc.moneda).n(doc.moneda).x(doc.paridad, 4);
            for (int x : doc.desc) r.n(x);
            r.m(doc.subtotal)
                .m(doc.iva)
                .m(doc.impAd)
                .m(doc.cargo1)
                .m(0)
                .m(0)
                .m(doc.ret)
                .m(doc.retIva)
                .m(doc.total)
                .m(doc.total)
                .m(doc.pagado)
                .m(doc.saldo)
                .f(doc.vence)
                .t(doc.deRemisiones ? "FACTURA DE REMISIONES" : "");
            enc->agrega(r);
            int partida = 0;
            for (const Partida& pt : doc.partidas) {
                const Producto& p = prods_[static_cast<size_t>(pt.prod)];
                Renglon rd;
                rd.n(doc.id)
                    .n(++partida)
                    .t(p.clave)
                    .t(p.descrip)
                    .q(pt.cant)
                    .q(pt.devueltos)
                    .m(pt.precio)
                    .m(pt.precioNeto)
                    .n(pt.descuento)
                    .n(16)
                    .m(pt.costoProm)
                    .x(pt.paridadCompra, 4)
                    .n(pt.numPrecio)
                    .n(pt.idKardex);
                if (kind != kApartado) rd.n(pt.remision);
                det->agrega(rd);
            }
        }
        enc->termina();
        det->termina();
    }

    auto cxc = lote("cxc", "Id,Clave,Fecha,Vencimiento,Tipo,Numero,NumPago,Saldo,Total,IdMoneda");
    for (const auto& cx : cxc_)
        if (cx.abierta && cx.saldo > 0)
            cxc->agrega(Renglon()
                            .n(cx.id)
                            .t(cx.clave)
                            .f(cx.fecha)
                            .f(cx.vence)
                            .t(std::string(1, cx.tipo))
                            .n(cx.numero)
                            .n(1)
                            .m(cx.saldo)
                            .m(cx.total)
                            .n(cx.moneda));
    cxc->termina();
    auto cxp = lote("cxp", "Id,Clave,Fecha,Vencimiento,Tipo,Numero,NumPago,Saldo,Total,IdMoneda");
    for (const auto& cx : cxp_)
        if (cx.abierta && cx.saldo > 0)
            cxp->agrega(Renglon()
                            .n(cx.id)
                            .t(cx.clave)
                            .f(cx.fecha)
                            .f(cx.vence)
                            .t(std::string(1, cx.tipo))
                            .n(cx.numero)
                            .n(1)
                            .m(cx.saldo)
                            .m(cx.total)
                            .n(cx.moneda));
    cxp->termina();

    // Post-dated cheques for some open documents; a few already cashed or cancelled.
    auto ch = lote("chequespf",
                   "IdCheque,Fecha,FechaCobro,Cliente,Banco,NumCheque,Cantidad,IdMoneda,Cobrado,"
                   "Cancelado,Usuario");
    auto chd = lote("chequespfdetalle", "Id,IdCheque,IdCxC,Cantidad");
    int sigDet = 1;
    for (const auto& cx : cxc_) {
        if (!cx.abierta || cx.saldo <= 0 || cx.tipo == 'C' || !az_.probable(0.08)) continue;
        const int id = sigCheque_++;
        const int fecha = std::max(cx.fecha, fin_ - static_cast<int>(az_.entre(0, 40)));
        ch->agrega(Renglon()
                       .n(id)
                       .f(fecha)
                       .f(fecha + static_cast<int>(az_.entre(5, 60)))
                       .t(cx.clave)
                       .t(elige(az_, kBancos))
                       .t(conCeros(az_.entre(1, 9999999), 7))
                       .m(cx.saldo)
                       .n(cx.moneda)
                       .n(0)
                       .n(az_.probable(0.05) ? 1 : 0)
                       .t(usuario()));
        chd->agrega(Renglon().n(sigDet++).n(id).n(cx.id).m(cx.saldo));
    }
    ch->termina();
    chd->termina();

    auto cmp =
        lote("compras",
             "Compra,Factura,Fecha,Hora,Proveedor,Sucursal,Usuario,Cancelada,Afectada,Moneda,"
             "IdMoneda,Paridad,Subtotal,IVA,ImpuestoAd,Total,Pagado,Saldo,Vence");
    auto cnd =
        lote("comprasnd",
             "Compra,Factura,Fecha,Hora,Proveedor,Sucursal,Usuario,Cancelada,Afectada,Moneda,"
             "IdMoneda,Paridad,Subtotal,IVA,ImpuestoAd,Total,Pagado,Saldo,Vence");
    for (const Compra& cp : compras_) {
        (cp.nd ? cnd : cmp)
            ->agrega(Renglon()
                         .n(cp.compra)
                         .t(cp.factura)
                         .f(cp.fecha)
                         .h(cp.hora)
                         .t(provs_[static_cast<size_t>(cp.prov)].clave)
                         .t(cp.sucursal)
                         .t(cp.usuario)
                         .n(cp.cancelada ? 1 : 0)
                         .n(cp.cancelada ? 0 : 1)
                         .n(cp.moneda)
                         .n(cp.moneda)
                         .x(cp.paridad, 4)
                         .m(cp.subtotal)
                         .m(cp.iva)
                         .m(cp.impAd)
                         .m(cp.total)
                         .m(cp.pagado)
                         .m(cp.saldo)
                         .f(cp.vence));
    }
    cmp->termina();
    cnd->termina();
}

// Chains each account's statement by Fecha, then Id, and returns the final
// balance per (account, currency).
std::map<std::pair<std::string, int>, long long> encadena(std::vector<Movimiento>& movs) {
    std::vector<size_t> orden(movs.size());
    std::iota(orden.begin(), orden.end(), size_t{0});
    std::sort(orden.begin(), orden.end(), [&](size_t a, size_t b) {
        const Movimiento& x = movs[a];
        const Movimiento& y = movs[b];
        return std::tie(x.clave, x.moneda, x.fecha, x.id) <
               std::tie(y.clave, y.moneda, y.fecha, y.id);
    });
    std::map<std::pair<std::string, int>, long long> saldos;
    for (size_t i : orden) {
        Movimiento& mv = movs[i];
        long long& saldo = saldos[{mv.clave, mv.moneda}];
        mv.saldoAnt = saldo;
        saldo = mv.cargo != 0 ? saldo + mv.cargo : saldo - mv.pago;
        mv.saldoAct = saldo;
    }
    return saldos;
}

void Simulacion::escribeEstados() {
    const std::string cols =
        "Id,Folio,Foliote,Movimiento,Fecha,Hora,FechaDePago,Clave,CantidadCargo,CantidadPago,"
        "Concepto,Concepto2,Concepto3,Usuario,MontoTotal,MonedaMT,IdMoneda,Moneda,NotaCredito,"
        "SaldoAnterior,SaldoActual";
    auto escribe = [&](std::vector<Movimiento>& movs, const char* t) {
        auto l = lote(t, cols);
        for (const Movimiento& mv : movs)
            l->agrega(Renglon()
                          .n(mv.id)
                          .n(mv.folio)
                          .n(mv.folio)
                          .n(mv.movimiento)
                          .f(mv.fecha)
                          .h(mv.hora)
                          .f(mv.fechaPago)
                          .t(mv.clave)
                          .m(mv.cargo)
                          .m(mv.pago)
                          .t(mv.concepto)
                          .t(mv.concepto2)
                          .t("")
                          .t(mv.usuario)
                          .m(mv.montoTotal)
                          .n(mv.moneda)
                          .n(mv.moneda)
                          .n(mv.moneda)
                          .n(mv.notaCredito)
                          .m(mv.saldoAnt)
                          .m(mv.saldoAct));
        l->termina();
    };
    const auto saldosCli = encadena(movsCli_);
    const auto saldosProv = encadena(movsProv_);
    escribe(movsCli_, "edoctacli");
    escribe(movsProv_, "edoctaprov");

    auto sc = lote("saldoscli", "Clave,IdMoneda,Saldo");
    auto cl = lote("clientes",
                   "Id,Clave,Nombre,RFC,Direccion,Colonia,Ciudad,CP,Telefono,Email,Clasificacion,"
                   "Vendedor,LimiteCredito,DiasCredito,NumeroDePrecio,Saldo,SusPuntos,UltPago,"
                   "FechaAlta,Bloqueado");
    for (size_t i = 0; i < clis_.size(); ++i) {
        const Cliente& c = clis_[i];
        long long saldo1 = 0;
        bool tiene1 = false;
        for (int m = 1; m <= 3; ++m) {
            auto it = saldosCli.find({c.clave, m});
            if (it == saldosCli.end()) continue;
            sc->agrega(Renglon().t(c.clave).n(m).m(it->second));
            if (m == 1) {
                saldo1 = it->second;
                tiene1 = true;
            }
        }
        if (!tiene1) sc->agrega(Renglon().t(c.clave).n(1).m(0));
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
            .m(saldo1)
            .n(c.puntos);
        if (c.ultPago)
            r.f(c.ultPago);
        else
            r.cero();
        r.f(c.alta).n(i % 97 == 13 ? 1 : 0);
        cl->agrega(r);
    }
    sc->termina();
    cl->termina();

    auto sp = lote("saldospro", "Clave,IdMoneda,Saldo");
    auto pr = lote("proveedores",
                   "Id,Clave,Nombre,RFC,Direccion,Ciudad,Telefono,Email,Contacto,Clasificacion,"
                   "DiasCredito,Saldo,UltPago");
    for (size_t i = 0; i < provs_.size(); ++i) {
        const Proveedor& p = provs_[i];
        long long saldo1 = 0;
        bool alguno = false;
        for (int m = 1; m <= 3; ++m) {
            auto it = saldosProv.find({p.clave, m});
            if (it == saldosProv.end()) continue;
            sp->agrega(Renglon().t(p.clave).n(m).m(it->second));
            alguno = true;
            if (m == 1) saldo1 = it->second;
        }
        if (!alguno) sp->agrega(Renglon().t(p.clave).n(1).m(0));
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
            .m(saldo1);
        if (p.ultPago)
            r.f(p.ultPago);
        else
            r.cero();
        pr->agrega(r);
    }
    sp->termina();
    pr->termina();
}

void Simulacion::cierre() {
    escribeDocumentos();
    escribeEstados();

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

    auto cor = lote("cortes", "Id,Corte,Producto");
    for (size_t i = 0; i < cortes_.size(); ++i)
        cor->agrega(Renglon()
                        .n(static_cast<long long>(i) + 1)
                        .t(cortes_[i].second)
                        .t(prods_[static_cast<size_t>(cortes_[i].first)].clave));
    cor->termina();

    auto spc =
        lote("saldosprodsctes", "Id,Cliente,Producto,Descrip,Cantidad,Importe,UltMovimiento");
    int sigSpc = 1;
    for (const auto& [llave, saldo] : envasesSaldo_) {
        const Producto& p = prods_[static_cast<size_t>(llave.second)];
        spc->agrega(Renglon()
                        .n(sigSpc++)
                        .t(clis_[static_cast<size_t>(llave.first)].clave)
                        .t(p.clave)
                        .t(p.descrip)
                        .q(saldo)
                        .m(redondea(static_cast<double>(saldo) * p.precio[0] / 1000.0))
                        .f(envasesUlt_[llave]));
    }
    spc->termina();

    auto anx = lote("anexoreportes", "Id,ArchivoPadre,Archivo,DESCripcion");
    anx->agrega(Renglon().n(1).t("fmtAjuste.rpt").t("fmtAjuste.rpt").t("Formato de ajuste"));
    anx->agrega(
        Renglon().n(2).t("fmtAjuste.rpt").t("fmtAjuste2.rpt").t("Formato de ajuste con costos"));
    anx->agrega(Renglon().n(3).t("adsdcm.rpt").t("adsdcm2.rpt").t("Antigüedad de saldos resumida"));
    anx->termina();

    // General database: structure texts of the activity log and a few icons.
    if (op_.baseGeneral.empty()) return;
    auto est =
        std::make_unique<Lote>(c_, conteos_, "`" + op_.baseGeneral + "`.estructurasm", "Id,Dato");
    for (const auto& [id, texto] : kEstructuras) est->agrega(Renglon().n(id).cod(texto, "527"));
    est->termina();
    auto ico = std::make_unique<Lote>(c_, conteos_, "`" + op_.baseGeneral + "`.iconos",
                                      "Id,DESCripcion,Imagen");
    // A 1x1 transparent PNG serves every demo icon.
    const char* png =
        "X'89504E470D0A1A0A0000000D4948445200000001000000010806000000"
        "1F15C4890000000D4944415478DA63F8FFFF3F0005FE02FEA7D6A4560000000049454E44AE426082'";
    int idIco = 1;
    for (const char* d : {"IMPRIMIR", "PANTALLA", "ARCHIVO", "BUSCAR", "ACEPTAR", "CANCELAR"})
        ico->agrega(Renglon().n(idIco++).t(d).r(png));
    ico->termina();
}

void Simulacion::ejecuta() {
    kardex_ =
        lote("historicoalmacen",
             "Id,Producto,Fecha,Hora,Movimiento,Documento,Sucursal,Cantidad,ExistenciaAnterior,"
             "ExistenciaActual,Costo,CostoPromedio,Usuario");
    tickets_ = lote("tickets",
                    "Id,Ticket,Serie,Fecha,Hora,Caja,Cliente,Vendedor,Sucursal,Usuario,Cancelada,"
                    "Moneda,Subtotal,IVA,Total,Efectivo,Cambio,Facturado");
    ticketsDet_ = lote("ticketsdetalle",
                       "Id,Partida,Fecha,Producto,Descripcion,Cantidad,Precio,PrecioNeto,"
                       "CostoPromedio,IdKardex");
    aplic_ =
        lote("anexopagosctes",
             "Id,FolioDelPago,Tipo,Factura,Remision,Apartado,Cargo,IdFactura,IdRemision,"
             "IdApartado,Cliente,Cantidad,Moneda,CantidadReal,Efectivo,ChequeCuenta,ChequeOtra,"
             "Banco,NumCheque,Saldo,FechaReal,Hora,FechaAplicacion");
    recibos_ = lote("recibos", "Id,Recibo,IdPago,Fecha,Cliente,Cantidad,Cancelado,Usuario");
    devCtes_ = lote("devolucionctes",
                    "DevolucionCtes,Numero,Serie,Fecha,Hora,Cliente,Tipo,Venta,NotasCredito,"
                    "Cancelada,Moneda,Paridad,Desc1,Desc2,Desc3,Desc4,Desc5,Subtotal,IVA,Total,"
                    "Usuario,Motivo");
    devCtesDet_ = lote("devolucionctesdet",
                       "DevolucionCtes,Partida,Producto,Descripcion,Cantidad,Precio,CostoPromedio,"
                       "PartidaVenta,IdKardex");
    notas_ = lote("notascredito",
                  "NotaCredito,Serie,Fecha,Hora,Cliente,Devolucion,Cancelada,Moneda,Paridad,"
                  "Subtotal,IVA,Total,Concepto,Usuario");
    notasDet_ = lote("notascreditodetalle", "NotaCredito,Partida,Tipo,Numero,Producto,Cantidad");
    comprasDet_ =
        lote("comprasdetalle", "Compra,Partida,Producto,Descrip,Cantidad,Costo,Descuento,IdKardex");
    comprasNdDet_ = lote("comprasnddetalle",
                         "Compra,Partida,Producto,Descrip,Cantidad,Costo,Descuento,IdKardex");
    devProv_ = lote("devolucionprov",
                    "DevolucionProv,Numero,Fecha,Hora,Proveedor,Compra,Cancelada,Moneda,Subtotal,"
                    "IVA,Total,Usuario,Motivo");
    devProvDet_ = lote("devolucionprovdet",
                       "DevolucionProv,Partida,Producto,Descripcion,Cantidad,Precio,IdKardex");
    entradas_ =
        lote("entradas", "Entrada,Fecha,Hora,Destino,Proveedor,Usuario,Afectada,Observaciones");
    entradasDet_ =
        lote("entradasdetalle", "Entrada,Partida,Producto,Descrip,Cantidad,Precio,IdKardex");
    traspasos_ = lote("traspasos",
                      "Traspaso,Serie,Fecha,Hora,Origen,Destino,Usuario,Cancelado,Recibido,"
                      "Observaciones");
    traspasosDet_ =
        lote("traspasosdetalle", "Traspaso,Partida,Producto,Descrip,Cantidad,Precio,IdKardex");
    ajustes_ = lote("ajustes",
                    "Id,Ajuste,Fecha,Hora,Clave,Descrip,Sucursal,Usuario,ExistenciaAnterior,"
                    "ExistenciaFisica,Cantidad,Costo,Precio,Concepto,IdKardex");
    perdidas_ = lote("perdidas", "Perdida,Fecha,Hora,Sucursal,Usuario,Concepto");
    perdidasDet_ =
        lote("perdidasdetalle", "Perdida,Partida,Producto,Descrip,Cantidad,Costo,Motivo,IdKardex");
    separa_ = lote("separacionmet",
                   "Separacion,Fecha,Hora,Usuario,MetalOrigen,Cantidad,Costo,Merma,Observaciones");
    separaDet_ = lote("separacionmetdetalle", "Separacion,Partida,MetalDestino,Cantidad,Costo");
    movCortes_ = lote("movcortes",
                      "Id,Fecha,Hora,IdCorte,Usuario,ProductoOrigen,Producto,PesoOrigen,Cantidad,"
                      "Merma,Costo,Observaciones");
    bitacora_ = lote("bitacorausuarios",
                     "Id,Fecha,Hora,Usuario,Accion,Registro,Llave,Adicionales,Version,Equipo");
    gastos_ = lote("gastos", "Id,Fecha,Hora,Concepto,Cantidad,PdeV,Sucursal,Usuario");
    edoctaspc_ = lote("edoctaspc",
                      "Id,Fecha,Hora,Cliente,Producto,Concepto,Documento,CantidadCargo,"
                      "CantidadAbono,SaldoAnterior,SaldoActual,Usuario");

    avisa("Catálogos");
    catalogos();
    productos();
    clientesYproveedores();
    for (size_t k = 1; k < prodsPorClase_[2].size(); ++k) {
        const int pi = prodsPorClase_[2][k];
        std::string nombre = prods_[static_cast<size_t>(pi)].descrip;
        nombre = nombre.substr(0, nombre.find(" POR KG"));
        cortes_.push_back({pi, nombre});
    }
    inventarioInicial();

    int mesAvisado = -1;
    for (int d = inicio_; d <= fin_; ++d) {
        int y, m, dd;
        civilDeDias(d, y, m, dd);
        if (m != mesAvisado) {
            mesAvisado = m;
            avisa("Movimientos de " + textoFecha(d).substr(0, 7));
        }
        dia(d);
    }
    for (auto* l :
         {&kardex_,     &tickets_,     &ticketsDet_,  &aplic_,      &recibos_,      &devCtes_,
          &devCtesDet_, &notas_,       &notasDet_,    &comprasDet_, &comprasNdDet_, &devProv_,
          &devProvDet_, &entradas_,    &entradasDet_, &traspasos_,  &traspasosDet_, &ajustes_,
          &perdidas_,   &perdidasDet_, &separa_,      &separaDet_,  &movCortes_,    &bitacora_,
          &gastos_,     &edoctaspc_})
        (*l)->termina();
    avisa("Documentos, estados de cuenta y saldos");
    cierre();
}

}  // namespace
}  // namespace detail

ConteoFilas generarDemo(Conexion& conexion, const OpcionesDemo& opciones) {
    if (opciones.escala < 1 || opciones.escala > 1000)
        throw std::invalid_argument("La escala debe estar entre 1 y 1000 (se recibió " +
                                    std::to_string(opciones.escala) + ")");
    if (opciones.dias < 0 || opciones.dias > 3660)
        throw std::invalid_argument("Los días de historia deben estar entre 1 y 3660 (se recibió " +
                                    std::to_string(opciones.dias) + ")");
    for (const auto* b : {&opciones.baseEmpresa, &opciones.baseGeneral})
        if (!nombreDeBaseValido(*b) && !(b == &opciones.baseGeneral && b->empty()))
            throw std::invalid_argument("Nombre de base de datos no válido: '" + *b + "'");
    ConteoFilas conteos;
    detail::Escritores escritores(conexion, 3);
    detail::Simulacion sim(escritores, opciones, conteos);
    sim.ejecuta();
    escritores.termina();
    return conteos;
}

}  // namespace paratzorep::schema
