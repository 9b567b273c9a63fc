// Aging of balances end to end on a demo company: the totals of each column against SQL run
// independently, every file type of both entries, bad input, a failing fill, and the aging
// sheets mailed through `tzorep press ADSClientes cmdEnviar` to a local SMTP server that keeps
// what it receives (each message's recipient, subject and attached PDF read back).
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <set>
#include <sstream>
#include <thread>

#include "tests/apps/tzorep/accounts/DemoCuentas.h"

namespace paratzorep::cli {
namespace {

namespace lector = renderer::prueba;

bool Contiene(const std::string& texto, const std::string& parte) {
    return texto.find(parte) != std::string::npos;
}

// A port free on 127.0.0.1 right now.
int PuertoLibre() {
    const int s = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t n = sizeof a;
    bind(s, reinterpret_cast<sockaddr*>(&a), n);
    getsockname(s, reinterpret_cast<sockaddr*>(&a), &n);
    close(s);
    return ntohs(a.sin_port);
}

bool Escucha(int puerto) {
    const int s = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = htons(static_cast<std::uint16_t>(puerto));
    const bool ok = connect(s, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
    close(s);
    return ok;
}

class AntiguedadDemo : public DemoCuentas {
  protected:
    static void SetUpTestSuite() {
        DemoCuentas::SetUpTestSuite();
        pruebas::BaseDeDatosDePrueba b;
        schema::cargarArchivo(b.mysql(), schema::carpetaEsquemas() / "tanzoreportes.sql");
        b.ejecutar("CREATE TABLE IF NOT EXISTS tanzoreportes.adsmovtos LIKE `" + b.nombre() +
                   "`.adsmovtos");
    }

    static constexpr const char* kCorte = "mkeFecha(0)=31/10/2026";

    // An aggregate over the ledger rows whose document exists, by SQL of its own.
    std::string Agrega(const std::string& libro, const std::string& que, const std::string& donde) {
        const std::string docs =
            libro == "cxc"
                ? "(x.Tipo='F' AND EXISTS (SELECT 1 FROM facturas d WHERE d.Id=x.Numero)) OR "
                  "(x.Tipo='R' AND EXISTS (SELECT 1 FROM remisiones d WHERE d.Id=x.Numero)) OR "
                  "(x.Tipo='A' AND EXISTS (SELECT 1 FROM apartados d WHERE d.Id=x.Numero)) OR "
                  "(x.Tipo='C' AND EXISTS (SELECT 1 FROM edoctacli d WHERE d.Folio=x.Numero))"
                : "x.Tipo='M' AND EXISTS (SELECT 1 FROM compras d WHERE d.Compra=x.Numero)";
        return *bd->valor("SELECT " + que + " FROM " + libro + " x WHERE (" + docs + ") AND " +
                          donde);
    }
    double Suma(const std::string& libro, const std::string& donde) {
        return std::stod(Agrega(libro, "IFNULL(ROUND(SUM(Saldo),2),0)", donde));
    }

    // The settings of the mail server in the helper library's registry of a folder of its own.
    std::vector<std::pair<std::string, std::string>> Correo(int puerto) {
        const auto carpeta = tmp / "config" / "kvtz5";
        std::filesystem::create_directories(carpeta);
        std::ofstream(carpeta / "kvtz5.ini")
            << "[kvtz5]\nEnviarCorreos=1\nDeEquipo=Crédito y Cobranza\nedcSMTP=127.0.0.1\n"
               "edcPuertoSalida="
            << puerto
            << "\nedcCorreoSaliente=cobranza@example.org\nedcAutenticacion=1\n"
               "edcUsuario=cobranza\nedcPassword="
            << kPassword << "\nedcSSL=0\n";
        return {{"XDG_CONFIG_HOME", (tmp / "config").string()}};
    }

    pruebas::ResultadoPrograma Envia(int puerto, const std::vector<std::string>& ajustes) {
        std::vector<std::string> args = {
            "--home",        tmp.ruta().string(),           "press", "ADSClientes", "cmdEnviar",
            "--request-log", (tmp / "envio.jsonl").string()};
        for (const auto& a : ajustes) args.insert(args.end(), {"--set", a});
        return pruebas::ejecutarTzorep(args, Correo(puerto));
    }

    static constexpr const char* kPassword = "Cl4ve-Muy-Secreta";
};

TEST_F(AntiguedadDemo, ColumnasYTotalesContraSqlEnCadaTipoDeArchivo) {
    const std::string dias = "DATEDIFF('2026-10-31',x.Vencimiento)";
    for (const std::string entrada : {"ADSClientes", "ADSProveedores"}) {
        const std::string libro = entrada == "ADSClientes" ? "cxc" : "cxp";
        const double total = Suma(libro, "1");
        const double corriente = Suma(libro, dias + "<=0");
        const double vencido = Suma(libro, dias + ">=1 AND " + dias + "<=30");
        ASSERT_GT(corriente, 0) << entrada;
        for (const std::string tipo : {"pdf", "txt", "rtf", "doc", "xls", "xlsx", "csv"}) {
            SCOPED_TRACE(entrada + " " + tipo);
            const std::string texto = ImprimeYLee(entrada, {kCorte}, tipo);
            ASSERT_FALSE(texto.empty());
            if (tipo == "pdf") {
                EXPECT_TRUE(Contiene(texto, "al día: 31/oct/2026")) << texto.substr(0, 600);
                EXPECT_TRUE(Contiene(texto, "Total general")) << texto.substr(0, 600);
                for (double v : {total, corriente, vencido})
                    EXPECT_TRUE(Contiene(texto, Importe(v))) << Importe(v);
                EXPECT_TRUE(Contiene(texto, "Página 1 de ")) << texto.substr(0, 600);
            }
            if (tipo == "csv") {
                const auto filas = FilasCsv(texto);
                EXPECT_EQ(std::to_string(filas.size() - 1), Agrega(libro, "COUNT(*)", "1"));
            }
        }
    }
    // Two months later the oldest documents are over 90 days.
    const std::string tarde = "DATEDIFF('2026-12-31',x.Vencimiento)";
    const std::string pdf = ImprimeYLee("ADSClientes", {"mkeFecha(0)=31/12/2026"}, "pdf");
    for (const std::string& cond : {tarde + ">=31 AND " + tarde + "<=60",
                                    tarde + ">=61 AND " + tarde + "<=90", tarde + ">90"}) {
        const double v = Suma("cxc", cond);
        EXPECT_GT(v, 0) << cond;
        EXPECT_TRUE(Contiene(pdf, Importe(v))) << cond << " " << Importe(v);
    }
    // Only what is due, on one date: fewer documents, none with negative days.
    const auto vencidos = FilasCsv(
        ImprimeYLee("ADSClientes",
                    {kCorte, "chkSinVencer=0", "txtDato(0)=C00001", "txtDato(1)=C00100"}, "csv"));
    EXPECT_EQ(std::to_string(vencidos.size() - 1),
              Agrega("cxc", "COUNT(*)",
                     "Vencimiento<='2026-10-31' AND Clave BETWEEN 'C00001' AND 'C00100'"));
    EXPECT_EQ(TablasDeTrabajo(), 0);
}

TEST_F(AntiguedadDemo, EntradasMalasYFallaDelLlenado) {
    const auto salida = (tmp / "x.pdf").string();
    struct Caso {
        std::string entrada, ajuste, mensaje;
    };
    for (const auto& c : std::vector<Caso>{
             {"ADSClientes", "txtDato(0)=C'1", "no puede llevar comillas simples"},
             {"ADSProveedores", "mkeFecha(0)=31/02/2026", "no es una fecha válida"}}) {
        auto r = Imprime(c.entrada, {c.ajuste}, {"--to", "file", "--out", salida});
        EXPECT_EQ(r.estado, 1) << c.ajuste;
        EXPECT_TRUE(Contiene(r.errores, c.mensaje)) << r.errores;
    }
    bd->ejecutar("RENAME TABLE remisiones TO remisiones_fuera");
    auto r = Imprime("ADSClientes", {kCorte}, {"--to", "file", "--out", salida});
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "remisiones")) << r.errores;
    EXPECT_EQ(TablasDeTrabajo(), 0);
    // A button the form does not have is a usage error.
    r = Tzorep({"press", "ADSClientes", "cmdNoExiste"});
    EXPECT_EQ(r.estado, 2);
    EXPECT_TRUE(Contiene(r.errores, "cmdEnviar")) << r.errores;
}

TEST_F(AntiguedadDemo, LasHojasLleganPorCorreoACadaClienteConDireccion) {
    if (!lector::HayModuloPython("aiosmtpd")) GTEST_SKIP() << "falta python3-aiosmtpd";
    const int puerto = PuertoLibre();
    const auto buzon = tmp / "buzon";
    pruebas::ProgramaEnCurso smtp(
        "/usr/bin/python3", {"-m", "aiosmtpd", "-n", "-l", "127.0.0.1:" + std::to_string(puerto),
                             "-c", "aiosmtpd.handlers.Mailbox", buzon.string()});
    for (int i = 0; i < 100 && !Escucha(puerto); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ASSERT_TRUE(Escucha(puerto));

    const std::vector<std::string> rango = {kCorte, "txtDato(0)=C00001", "txtDato(1)=C00040"};
    auto r = Envia(puerto, rango);
    ASSERT_EQ(r.estado, 0) << r.errores;
    const auto esperados = bd->filas(
        "SELECT k.Clave,k.Email,ROUND(SUM(x.Saldo),2) FROM clientes k JOIN cxc x ON "
        "x.Clave=k.Clave WHERE k.Email<>'' AND k.Clave BETWEEN 'C00001' AND 'C00040' GROUP BY "
        "k.Clave ORDER BY k.Clave");
    ASSERT_GE(esperados.size(), 3u);
    ASSERT_LT(esperados.size(),
              std::stoul(*bd->valor("SELECT COUNT(DISTINCT Clave) FROM cxc WHERE Clave BETWEEN "
                                    "'C00001' AND 'C00040'")));
    EXPECT_TRUE(Contiene(r.errores, "Se enviaron " + std::to_string(esperados.size()) + " hojas"))
        << r.errores;

    // Each message: recipient, subject, and its attachment written out for pdftotext.
    const auto mensajes = lector::Ejecutar(
        "/usr/bin/python3 -c " +
        lector::Comillas(
            "import mailbox,sys,email.header\n"
            "for k,m in sorted(mailbox.Maildir(sys.argv[1],create=False).items(),"
            "key=lambda p:p[1]['To']):\n"
            "  s=str(email.header.make_header(email.header.decode_header(m['Subject'])))\n"
            "  for p in m.walk():\n"
            "    if p.get_filename():\n"
            "      open(sys.argv[2]+'/'+p.get_filename(),'wb').write(p.get_payload(decode=True))\n"
            "      print(m['X-RcptTo'],'|',s,'|',p.get_filename(),'|',p.get_content_type())\n") +
        " " + lector::Comillas(buzon.string()) + " " + lector::Comillas(tmp.ruta().string()));
    ASSERT_EQ(mensajes.estado, 0) << mensajes.texto;
    std::vector<std::string> lineas;
    std::istringstream in(mensajes.texto);
    for (std::string l; std::getline(in, l);) lineas.push_back(l);
    ASSERT_EQ(lineas.size(), esperados.size()) << mensajes.texto;
    std::set<std::string> porLlegar;
    for (const auto& e : esperados) porLlegar.insert(e[1]);
    for (const auto& e : esperados) {
        SCOPED_TRACE(e[0]);
        const std::string archivo = "ADS-" + e[0] + ".pdf";
        auto linea = std::find_if(lineas.begin(), lineas.end(),
                                  [&](const std::string& l) { return Contiene(l, archivo); });
        ASSERT_NE(linea, lineas.end());
        EXPECT_TRUE(Contiene(*linea, e[1] + " | [EDC-ADS] Antigüedad de saldos | ")) << *linea;
        EXPECT_TRUE(Contiene(*linea, "application/pdf")) << *linea;
        const auto pdf = lector::Ejecutar("pdftotext -layout " +
                                          lector::Comillas((tmp / archivo).string()) + " -");
        EXPECT_TRUE(Contiene(pdf.texto, e[0])) << pdf.texto;
        EXPECT_TRUE(Contiene(pdf.texto, Importe(std::stod(e[2])))) << pdf.texto;
        // Only this customer's documents.
        EXPECT_TRUE(Contiene(pdf.texto, "1 clientes")) << pdf.texto;
    }
    // The request of each sheet selects its customer.
    std::ifstream log(tmp / "envio.jsonl");
    const std::string solicitudes((std::istreambuf_iterator<char>(log)), {});
    EXPECT_TRUE(Contiene(solicitudes, "{adsmovtos.Clave}='" + esperados[0][0] + "'"))
        << solicitudes;
    EXPECT_TRUE(Contiene(solicitudes, "TEXTOLLAVE='Movto.'")) << solicitudes;
    EXPECT_EQ(TablasDeTrabajo(), 0);

    // A server that is not there: the print stops naming it and the customers left unsent.
    const int cerrado = PuertoLibre();
    r = Envia(cerrado, rango);
    EXPECT_EQ(r.estado, 1);
    EXPECT_TRUE(Contiene(r.errores, "127.0.0.1:" + std::to_string(cerrado))) << r.errores;
    EXPECT_TRUE(Contiene(r.errores, "quedaron sin enviar: " + esperados[0][0])) << r.errores;
    EXPECT_TRUE(Contiene(r.errores, esperados.back()[0])) << r.errores;
    EXPECT_EQ(TablasDeTrabajo(), 0);

    // The password stays in the settings file: not in messages, mail or any other file.
    EXPECT_FALSE(Contiene(r.salida + r.errores + solicitudes, kPassword));
    const auto grep = lector::Ejecutar("grep -rl -- " + lector::Comillas(kPassword) + " " +
                                       lector::Comillas(tmp.ruta().string()));
    EXPECT_EQ(grep.texto, (tmp / "config/kvtz5/kvtz5.ini").string() + "\n");
}

}  // namespace
}  // namespace paratzorep::cli
