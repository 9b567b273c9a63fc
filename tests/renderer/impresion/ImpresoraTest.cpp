// Printing through CUPS against a closed port (no server) and against a small IPP
// server in the test that knows a few queues, refuses jobs on demand and records
// what libcups sent.
#include "renderer/impresion/Impresora.h"

#include <arpa/inet.h>
#include <cups/cups.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <thread>

namespace paratzorep::renderer {
namespace {

// A TCP socket bound to a free loopback port, and that port.
int SocketLocal(int& puerto) {
    int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a);
    socklen_t largo = sizeof a;
    ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &largo);
    puerto = ntohs(a.sin_port);
    return s;
}

// The address of a port nobody listens on.
std::string SinNadieEscuchando() {
    int puerto = 0;
    ::close(SocketLocal(puerto));
    return "127.0.0.1:" + std::to_string(puerto);
}

class ServidorIpp {
  public:
    struct Peticion {
        ipp_op_t operacion;
        std::string uri, titulo, documento;
        int copias = 0;
    };

    ServidorIpp(std::vector<std::string> colas, bool rechazar = false)
        : colas_(std::move(colas)), rechazar_(rechazar) {
        escucha_ = SocketLocal(puerto_);
        ::listen(escucha_, 8);
        hilo_ = std::thread([this] { Atender(); });
    }
    ~ServidorIpp() {
        fin_ = true;
        ::shutdown(escucha_, SHUT_RDWR);
        hilo_.join();
        ::close(escucha_);
        std::lock_guard<std::mutex> l(mutex_);
        for (http_t* c : clientes_) httpShutdown(c);
        for (auto& h : hilosClientes_) h.join();
        for (http_t* c : clientes_) httpClose(c);
    }
    std::string Direccion() const { return "127.0.0.1:" + std::to_string(puerto_); }
    std::vector<Peticion> Peticiones() {
        std::lock_guard<std::mutex> l(mutex_);
        return peticiones_;
    }

  private:
    void Atender() {
        while (!fin_) {
            http_t* c = httpAcceptConnection(escucha_, 1);
            if (c == nullptr) return;
            // libcups may hold one connection open while it opens another.
            std::lock_guard<std::mutex> l(mutex_);
            clientes_.push_back(c);
            hilosClientes_.emplace_back([this, c] { Conexion(c); });
        }
    }

    // Answers the IPP requests of one connection until the client closes it; libcups's own
    // HTTP server side handles "Expect: 100-continue" and chunked bodies.
    void Conexion(http_t* c) {
        char recurso[1024];
        for (;;) {
            http_state_t estado = httpReadRequest(c, recurso, sizeof recurso);
            if (estado == HTTP_STATE_WAITING) {
                httpWait(c, 100);
                continue;
            }
            if (estado != HTTP_STATE_POST) return;
            http_status_t campos;
            while ((campos = httpUpdate(c)) == HTTP_STATUS_CONTINUE) {
            }
            if (campos != HTTP_STATUS_OK) return;
            if (httpGetExpect(c) == HTTP_STATUS_CONTINUE)
                httpWriteResponse(c, HTTP_STATUS_CONTINUE);
            ipp_t* req = ippNew();
            ipp_state_t ipp;
            while ((ipp = ippRead(c, req)) != IPP_STATE_DATA && ipp != IPP_STATE_ERROR) {
            }
            std::string documento;
            char b[8192];
            for (ssize_t n; (n = httpRead2(c, b, sizeof b)) > 0;)
                documento.append(b, static_cast<std::size_t>(n));
            ipp_t* r = Responder(req, std::move(documento));
            ippDelete(req);
            httpClearFields(c);
            httpSetField(c, HTTP_FIELD_CONTENT_TYPE, "application/ipp");
            httpSetLength(c, ippLength(r));
            httpWriteResponse(c, HTTP_STATUS_OK);
            while ((ipp = ippWrite(c, r)) != IPP_STATE_DATA && ipp != IPP_STATE_ERROR) {
            }
            httpFlushWrite(c);
            ippDelete(r);
        }
    }

    ipp_t* Responder(ipp_t* req, std::string documento) {
        Peticion p;
        p.operacion = ippGetOperation(req);
        if (auto* a = ippFindAttribute(req, "printer-uri", IPP_TAG_URI))
            p.uri = ippGetString(a, 0, nullptr);
        if (auto* a = ippFindAttribute(req, "job-name", IPP_TAG_NAME))
            p.titulo = ippGetString(a, 0, nullptr);
        if (auto* a = ippFindAttribute(req, "copies", IPP_TAG_INTEGER))
            p.copias = ippGetInteger(a, 0);
        p.documento = std::move(documento);
        {
            std::lock_guard<std::mutex> g(mutex_);
            peticiones_.push_back(p);
        }

        ipp_t* r = ippNew();
        ippSetVersion(r, 2, 0);
        ippSetRequestId(r, ippGetRequestId(req));
        ippAddString(r, IPP_TAG_OPERATION, IPP_TAG_CHARSET, "attributes-charset", nullptr, "utf-8");
        ippAddString(r, IPP_TAG_OPERATION, IPP_TAG_LANGUAGE, "attributes-natural-language", nullptr,
                     "es");
        auto cola = [&](const std::string& nombre) {
            std::string uri = "ipp://" + Direccion() + "/printers/" + nombre;
            ippAddString(r, IPP_TAG_PRINTER, IPP_TAG_NAME, "printer-name", nullptr, nombre.c_str());
            ippAddString(r, IPP_TAG_PRINTER, IPP_TAG_URI, "printer-uri-supported", nullptr,
                         uri.c_str());
            ippAddString(r, IPP_TAG_PRINTER, IPP_TAG_URI, "device-uri", nullptr,
                         "file:///dev/null");
            ippAddInteger(r, IPP_TAG_PRINTER, IPP_TAG_ENUM, "printer-state", IPP_PSTATE_IDLE);
            ippAddInteger(r, IPP_TAG_PRINTER, IPP_TAG_ENUM, "printer-type", CUPS_PRINTER_LOCAL);
        };
        ipp_status_t estado = IPP_STATUS_OK;
        switch (p.operacion) {
            case IPP_OP_GET_PRINTER_ATTRIBUTES: {
                auto it = std::find_if(colas_.begin(), colas_.end(), [&](const std::string& c) {
                    return p.uri.size() >= c.size() && p.uri.substr(p.uri.size() - c.size()) == c;
                });
                if (it == colas_.end())
                    estado = IPP_STATUS_ERROR_NOT_FOUND;
                else
                    cola(*it);
                break;
            }
            case IPP_OP_CUPS_GET_DEFAULT:
                estado = IPP_STATUS_ERROR_NOT_FOUND;
                break;
            case IPP_OP_CUPS_GET_PRINTERS:
                for (std::size_t i = 0; i < colas_.size(); ++i) {
                    if (i > 0) ippAddSeparator(r);
                    cola(colas_[i]);
                }
                break;
            case IPP_OP_CREATE_JOB:
            case IPP_OP_PRINT_JOB:
            case IPP_OP_SEND_DOCUMENT:
                if (rechazar_) {
                    estado = IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS;
                } else {
                    ippAddInteger(r, IPP_TAG_JOB, IPP_TAG_INTEGER, "job-id", 42);
                    ippAddInteger(r, IPP_TAG_JOB, IPP_TAG_ENUM, "job-state", IPP_JSTATE_PENDING);
                }
                break;
            default:
                break;
        }
        ippSetStatusCode(r, estado);
        return r;
    }

    std::vector<std::string> colas_;
    bool rechazar_;
    int escucha_ = -1;
    int puerto_ = 0;
    std::atomic<bool> fin_{false};
    std::thread hilo_;
    std::mutex mutex_;
    std::vector<Peticion> peticiones_;
    std::vector<http_t*> clientes_;
    std::vector<std::thread> hilosClientes_;
};

class ImpresoraTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char plantilla[] = "/tmp/tz-impresion-XXXXXX";
        carpeta_ = ::mkdtemp(plantilla);
        pdf_ = carpeta_ / "Saldos 20240229-101500.pdf";
        std::ofstream(pdf_, std::ios::binary) << "%PDF-1.4\n% prueba\n%%EOF\n";
        ::unsetenv("LPDEST");
        ::unsetenv("PRINTER");
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::remove_all(carpeta_, ec);
    }
    ErrorImpresion::Motivo Falla(const TrabajoImpresion& t, std::string* mensaje = nullptr) {
        try {
            Imprimir(t);
        } catch (const ErrorImpresion& e) {
            if (mensaje) *mensaje = e.what();
            EXPECT_EQ(e.archivo(), t.archivo);
            return e.motivo();
        }
        ADD_FAILURE() << "se esperaba ErrorImpresion";
        return ErrorImpresion::Motivo::Rechazado;
    }
    std::filesystem::path carpeta_, pdf_;
};

TEST_F(ImpresoraTest, SinServidorElArchivoSeConserva) {
    std::string servidor = SinNadieEscuchando();
    std::string mensaje;
    EXPECT_EQ(Falla({pdf_, "contabilidad", 1, "Saldos", servidor}, &mensaje),
              ErrorImpresion::Motivo::SinServidor);
    EXPECT_NE(mensaje.find("No se pudo conectar con el servidor de impresión (" + servidor + ")"),
              std::string::npos)
        << mensaje;
    EXPECT_NE(mensaje.find("quedó guardado en: " + pdf_.string()), std::string::npos) << mensaje;
    EXPECT_TRUE(std::filesystem::exists(pdf_));
    EXPECT_TRUE(Impresoras(servidor).empty());
}

TEST_F(ImpresoraTest, SinServidorPorLaVariableCupsServer) {
    std::string servidor = SinNadieEscuchando();
    ::setenv("CUPS_SERVER", servidor.c_str(), 1);
    cupsSetServer(nullptr);  // libcups reads the variable again
    TrabajoImpresion t{pdf_, "", 2, "", "", true};
    EXPECT_EQ(Falla(t), ErrorImpresion::Motivo::SinServidor);
    ::unsetenv("CUPS_SERVER");
    cupsSetServer(nullptr);
    EXPECT_TRUE(std::filesystem::exists(pdf_));  // not removed: it was never sent
}

TEST_F(ImpresoraTest, ArchivoFaltante) {
    EXPECT_EQ(Falla({carpeta_ / "no-existe.pdf", "x", 1, "", ""}),
              ErrorImpresion::Motivo::ArchivoFaltante);
    EXPECT_EQ(Falla({carpeta_, "x", 1, "", ""}), ErrorImpresion::Motivo::ArchivoFaltante);
}

TEST_F(ImpresoraTest, ImpresoraDesconocidaOSinPredeterminada) {
    ServidorIpp servidor({"contabilidad"});
    std::string mensaje;
    EXPECT_EQ(Falla({pdf_, "almacen", 1, "", servidor.Direccion()}, &mensaje),
              ErrorImpresion::Motivo::ImpresoraDesconocida);
    EXPECT_NE(mensaje.find("La impresora \"almacen\" no existe"), std::string::npos) << mensaje;
    EXPECT_EQ(Falla({pdf_, "", 1, "", servidor.Direccion()}),
              ErrorImpresion::Motivo::SinPredeterminada);
    EXPECT_TRUE(std::filesystem::exists(pdf_));
}

TEST_F(ImpresoraTest, TrabajoRechazadoConservaElArchivo) {
    ServidorIpp servidor({"contabilidad"}, true);
    TrabajoImpresion t{pdf_, "contabilidad", 1, "Saldos", servidor.Direccion(), true};
    std::string mensaje;
    EXPECT_EQ(Falla(t, &mensaje), ErrorImpresion::Motivo::Rechazado);
    EXPECT_NE(mensaje.find("no aceptó el trabajo"), std::string::npos) << mensaje;
    EXPECT_TRUE(std::filesystem::exists(pdf_));
}

TEST_F(ImpresoraTest, EnviaElDocumentoConCopiasYTitulo) {
    ServidorIpp servidor({"almacen", "contabilidad"});
    TrabajoImpresion t{pdf_, "contabilidad", 3, "Saldos de clientes", servidor.Direccion(), true};
    EXPECT_EQ(Imprimir(t), 42);
    EXPECT_FALSE(std::filesystem::exists(pdf_));  // sent, so removed as asked

    bool creado = false, enviado = false;
    for (const auto& p : servidor.Peticiones()) {
        if (p.operacion == IPP_OP_CREATE_JOB || p.operacion == IPP_OP_PRINT_JOB) {
            creado = true;
            EXPECT_NE(p.uri.find("/printers/contabilidad"), std::string::npos) << p.uri;
            EXPECT_EQ(p.copias, 3);
            EXPECT_EQ(p.titulo, "Saldos de clientes");
        }
        if (p.operacion == IPP_OP_SEND_DOCUMENT || p.operacion == IPP_OP_PRINT_JOB) {
            enviado = true;
            EXPECT_EQ(p.documento, "%PDF-1.4\n% prueba\n%%EOF\n");
        }
    }
    EXPECT_TRUE(creado);
    EXPECT_TRUE(enviado);
}

TEST_F(ImpresoraTest, CopiasFueraDeRangoYTituloPorOmision) {
    ServidorIpp servidor({"contabilidad"});
    EXPECT_EQ(Imprimir({pdf_, "contabilidad", 0, "", servidor.Direccion()}), 42);
    EXPECT_EQ(Imprimir({pdf_, "contabilidad", 5000, "", servidor.Direccion()}), 42);
    std::vector<int> copias;
    for (const auto& p : servidor.Peticiones())
        if (p.operacion == IPP_OP_CREATE_JOB || p.operacion == IPP_OP_PRINT_JOB) {
            copias.push_back(p.copias);
            EXPECT_EQ(p.titulo, pdf_.filename().string());
        }
    EXPECT_EQ(copias, (std::vector<int>{1, 999}));
}

TEST_F(ImpresoraTest, ListaDeColas) {
    ServidorIpp servidor({"almacen", "contabilidad"});
    auto colas = Impresoras(servidor.Direccion());
    std::sort(colas.begin(), colas.end());
    EXPECT_EQ(colas, (std::vector<std::string>{"almacen", "contabilidad"}));
}

}  // namespace
}  // namespace paratzorep::renderer
