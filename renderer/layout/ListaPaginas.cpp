#include "renderer/layout/ListaPaginas.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "renderer/writers/ErrorEscritura.h"

namespace paratzorep::renderer {

namespace detail {

// Serialization, kept compact because a large report writes tens of thousands of pages:
// geometry as 32-bit floats (far finer than paper shows), counts, lengths and band numbers
// as variable-length integers, the small enums packed in one byte, display formats as an
// index into the list's table of formats, and a text's value only when it has one.
class Serializador {
  public:
    explicit Serializador(std::vector<char>& b) : b_(b) {}
    void U8(std::uint8_t v) { b_.push_back(static_cast<char>(v)); }
    void Var(std::uint64_t v) {
        while (v >= 0x80) {
            U8(static_cast<std::uint8_t>(v | 0x80));
            v >>= 7;
        }
        U8(static_cast<std::uint8_t>(v));
    }
    void F32(double v) {
        float f = static_cast<float>(v);
        Crudo(&f, sizeof f);
    }
    void F64(double v) { Crudo(&v, sizeof v); }
    void Texto(const std::string& s) {
        Var(s.size());
        Crudo(s.data(), s.size());
    }

  private:
    void Crudo(const void* p, std::size_t n) {
        const char* c = static_cast<const char*>(p);
        b_.insert(b_.end(), c, c + n);
    }
    std::vector<char>& b_;
};

class Deserializador {
  public:
    Deserializador(const char* p, std::size_t n) : p_(p), fin_(p + n) {}
    std::uint8_t U8() {
        if (p_ == fin_) Corto();
        return static_cast<std::uint8_t>(*p_++);
    }
    std::uint64_t Var() {
        std::uint64_t v = 0;
        for (int desplazamiento = 0; desplazamiento < 64; desplazamiento += 7) {
            std::uint8_t b = U8();
            v |= static_cast<std::uint64_t>(b & 0x7F) << desplazamiento;
            if (!(b & 0x80)) return v;
        }
        Corto();
    }
    double F32() {
        float v;
        Crudo(&v, sizeof v);
        return v;
    }
    double F64() {
        double v;
        Crudo(&v, sizeof v);
        return v;
    }
    std::string Texto() {
        std::uint64_t n = Var();
        if (static_cast<std::uint64_t>(fin_ - p_) < n) Corto();
        std::string s(p_, n);
        p_ += n;
        return s;
    }

  private:
    void Crudo(void* d, std::size_t n) {
        if (static_cast<std::size_t>(fin_ - p_) < n) Corto();
        std::memcpy(d, p_, n);
        p_ += n;
    }
    [[noreturn]] static void Corto() {
        throw ErrorEscritura("El archivo temporal de páginas está dañado");
    }
    const char* p_;
    const char* fin_;
};

void Serializa(const PaginaEnConstruccion& pc, std::vector<char>& b,
               const std::function<std::uint64_t(const std::string&)>& indiceFormato) {
    Serializador s(b);
    const Pagina& p = pc.pagina;
    s.Var(static_cast<std::uint64_t>(p.numero));
    s.Var(p.cajas.size());
    for (const auto& c : p.cajas) {
        s.F32(c.x);
        s.F32(c.y);
        s.F32(c.ancho);
        s.F32(c.alto);
        s.F32(c.grosor);
        s.F32(c.gris);
    }
    s.Var(p.lineas.size());
    for (const auto& l : p.lineas) {
        s.F32(l.x1);
        s.F32(l.y1);
        s.F32(l.x2);
        s.F32(l.y2);
        s.F32(l.grosor);
    }
    s.Var(p.textos.size());
    for (const auto& t : p.textos) {
        s.F32(t.x);
        s.F32(t.y);
        s.F32(t.ancho);
        s.F32(t.alto);
        s.F32(t.base);
        s.F32(t.interlineado);
        s.Var(t.fuente);
        s.U8(static_cast<std::uint8_t>(static_cast<unsigned>(t.alineacion) |
                                       static_cast<unsigned>(t.tipo) << 2 |
                                       static_cast<unsigned>(t.tipoBanda) << 4));
        s.U8(t.nivelGrupo);
        s.Var(t.banda);
        s.Var(t.columna);
        if (t.tipo != TipoValor::Texto) s.F64(t.numero);
        s.Var(indiceFormato(t.formato));
        s.Var(t.renglones.size());
        for (const auto& r : t.renglones) {
            s.Texto(r.texto);
            s.F32(r.dx);
            s.F32(r.ancho);
        }
    }
    s.Var(pc.pendientes.size());
    for (auto i : pc.pendientes) s.Var(i);
}

PaginaEnConstruccion Deserializa(const char* datos, std::size_t n,
                                 const std::vector<std::string>& formatos) {
    Deserializador d(datos, n);
    PaginaEnConstruccion pc;
    Pagina& p = pc.pagina;
    p.numero = static_cast<int>(d.Var());
    p.cajas.resize(d.Var());
    for (auto& c : p.cajas) {
        c.x = d.F32();
        c.y = d.F32();
        c.ancho = d.F32();
        c.alto = d.F32();
        c.grosor = d.F32();
        c.gris = d.F32();
    }
    p.lineas.resize(d.Var());
    for (auto& l : p.lineas) {
        l.x1 = d.F32();
        l.y1 = d.F32();
        l.x2 = d.F32();
        l.y2 = d.F32();
        l.grosor = d.F32();
    }
    p.textos.resize(d.Var());
    for (auto& t : p.textos) {
        t.x = d.F32();
        t.y = d.F32();
        t.ancho = d.F32();
        t.alto = d.F32();
        t.base = d.F32();
        t.interlineado = d.F32();
        t.fuente = static_cast<std::uint16_t>(d.Var());
        std::uint8_t banderas = d.U8();
        t.alineacion = static_cast<Alineacion>(banderas & 3);
        t.tipo = static_cast<TipoValor>((banderas >> 2) & 3);
        t.tipoBanda = static_cast<TipoBanda>(banderas >> 4);
        t.nivelGrupo = d.U8();
        t.banda = static_cast<std::uint32_t>(d.Var());
        t.columna = static_cast<std::uint16_t>(d.Var());
        if (t.tipo != TipoValor::Texto) t.numero = d.F64();
        std::uint64_t f = d.Var();
        if (f >= formatos.size())
            throw ErrorEscritura("El archivo temporal de páginas está dañado");
        t.formato = formatos[f];
        t.renglones.resize(d.Var());
        for (auto& r : t.renglones) {
            r.texto = d.Texto();
            r.dx = d.F32();
            r.ancho = d.F32();
        }
    }
    pc.pendientes.resize(d.Var());
    for (auto& i : pc.pendientes) i = static_cast<std::uint32_t>(d.Var());
    return pc;
}

}  // namespace detail

ListaPaginas::ListaPaginas(const std::string& carpeta) {
    std::string dir = carpeta;
    if (dir.empty()) {
        const char* t = std::getenv("TMPDIR");
        dir = t && *t ? t : "/tmp";
    }
    std::string plantilla = dir + "/tzorep-paginas-XXXXXX";
    std::vector<char> nombre(plantilla.begin(), plantilla.end());
    nombre.push_back('\0');
    int fd = mkstemp(nombre.data());
    if (fd < 0)
        throw ErrorEscritura("No se pudo crear el archivo temporal de páginas", dir,
                             std::strerror(errno));
    unlink(nombre.data());  // gone when closed, whatever happens
    archivo_.reset(fdopen(fd, "w+b"));
    if (!archivo_) {
        int e = errno;
        close(fd);
        throw ErrorEscritura("No se pudo abrir el archivo temporal de páginas", dir,
                             std::strerror(e));
    }
}

ListaPaginas::~ListaPaginas() = default;

void ListaPaginas::Escribe(const void* datos, std::size_t n) {
    if (std::fwrite(datos, 1, n, archivo_.get()) != n)
        throw ErrorEscritura("No se pudo escribir el archivo temporal de páginas", {},
                             std::strerror(errno));
}

void ListaPaginas::Agrega(const PaginaEnConstruccion& pagina) {
    if (soloCuenta_) {
        offsets_.push_back(tamano_);
        return;
    }
    if (leyendo_) {
        std::fseek(archivo_.get(), 0, SEEK_END);
        leyendo_ = false;
    }
    bufer_.clear();
    bufer_.resize(sizeof(std::uint32_t));
    detail::Serializa(pagina, bufer_, [this](const std::string& f) -> std::uint64_t {
        auto [it, nuevo] = indiceFormatos_.try_emplace(f, formatos_.size());
        if (nuevo) formatos_.push_back(f);
        return it->second;
    });
    auto n = static_cast<std::uint32_t>(bufer_.size() - sizeof(std::uint32_t));
    std::memcpy(bufer_.data(), &n, sizeof n);
    offsets_.push_back(tamano_);
    Escribe(bufer_.data(), bufer_.size());
    tamano_ += bufer_.size();
}

Pagina ListaPaginas::Lee(int indice, Medidor& medidor, const std::string* totalProvisional) {
    if (indice < 0 || indice >= Total()) throw std::out_of_range("página fuera de rango");
    if (soloCuenta_) throw std::logic_error("las páginas de este reporte no se guardaron");
    if (!leyendo_) {
        if (std::fflush(archivo_.get()) != 0)
            throw ErrorEscritura("No se pudo escribir el archivo temporal de páginas", {},
                                 std::strerror(errno));
        leyendo_ = true;
    }
    if (std::fseek(archivo_.get(), static_cast<long>(offsets_[indice]), SEEK_SET) != 0)
        throw ErrorEscritura("No se pudo leer el archivo temporal de páginas", {},
                             std::strerror(errno));
    std::uint32_t n = 0;
    if (std::fread(&n, sizeof n, 1, archivo_.get()) != 1)
        throw ErrorEscritura("No se pudo leer el archivo temporal de páginas");
    bufer_.resize(n);
    if (n && std::fread(bufer_.data(), 1, n, archivo_.get()) != n)
        throw ErrorEscritura("No se pudo leer el archivo temporal de páginas");
    PaginaEnConstruccion pc = detail::Deserializa(bufer_.data(), n, formatos_);

    const std::string total = totalProvisional ? *totalProvisional : std::to_string(Total());
    for (auto i : pc.pendientes) {
        if (i >= pc.pagina.textos.size()) continue;
        ElementoTexto& t = pc.pagina.textos[i];
        for (auto& r : t.renglones) {
            for (std::size_t p; (p = r.texto.find("{M}")) != std::string::npos;)
                r.texto.replace(p, 3, total);
            r.ancho = medidor.Ancho(t.fuente, r.texto);
            r.dx = t.alineacion == Alineacion::Derecha  ? t.ancho - r.ancho
                   : t.alineacion == Alineacion::Centro ? (t.ancho - r.ancho) / 2
                                                        : 0;
        }
    }
    return std::move(pc.pagina);
}

void ListaPaginas::Reproduce(const Documento& documento, Medidor& medidor,
                             const std::vector<Escritor*>& escritores,
                             const std::function<void(int)>& escrita) {
    Documento doc = documento;
    doc.totalPaginas = Total();
    for (Escritor* e : escritores) e->Inicia(doc);
    for (int i = 0; i < Total(); ++i) {
        Pagina p = Lee(i, medidor);
        for (Escritor* e : escritores) e->Pagina(p);
        if (escrita) escrita(i + 1);
    }
    for (Escritor* e : escritores) e->Termina();
}

}  // namespace paratzorep::renderer
