// The laid-out report on disk: every page's display list written once, in order, to an
// unlinked temporary file, with only the offsets of the pages kept in memory. Writers
// replay it after the layout, when the total page count is known, so that "page N of M"
// needs neither a second pass over the data nor the pages held in memory.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "renderer/layout/Medidor.h"
#include "renderer/layout/Pagina.h"
#include "renderer/writers/Escritor.h"

namespace paratzorep::renderer {

// A page as the layout builds it: the page plus the texts that still wait for the total
// page count (their text holds "{M}").
struct PaginaEnConstruccion {
    Pagina pagina;
    std::vector<std::uint32_t> pendientes;  // indices into pagina.textos
};

class ListaPaginas {
  public:
    // Creates the temporary file in `carpeta` (empty: $TMPDIR or /tmp).
    explicit ListaPaginas(const std::string& carpeta = {});
    ~ListaPaginas();
    ListaPaginas(const ListaPaginas&) = delete;
    ListaPaginas& operator=(const ListaPaginas&) = delete;

    void Agrega(const PaginaEnConstruccion& pagina);
    // From here on pages are counted, not kept: for an output that takes the report's records
    // rather than its pages (a table), nothing is written to disk; Lee then fails.
    void SoloCuenta() { soloCuenta_ = true; }
    int Total() const { return static_cast<int>(offsets_.size()); }
    std::uint64_t Bytes() const { return tamano_; }

    // Reads page `indice` (0-based) back, with the total page count put in place and the
    // affected texts measured and aligned again with `medidor`. `totalProvisional`, when
    // given, stands for the total while the layout is still running (an early preview).
    Pagina Lee(int indice, Medidor& medidor, const std::string* totalProvisional = nullptr);

    // Hands every page, in order, to each writer: Inicia, Pagina..., Termina. `escrita`, when
    // set, is told the number of pages written so far after each page.
    void Reproduce(const Documento& documento, Medidor& medidor,
                   const std::vector<Escritor*>& escritores,
                   const std::function<void(int)>& escrita = {});

  private:
    void Escribe(const void* datos, std::size_t n);
    void Vacia();

    struct CierraArchivo {
        void operator()(std::FILE* f) const { std::fclose(f); }
    };
    std::unique_ptr<std::FILE, CierraArchivo> archivo_;
    std::vector<std::uint64_t> offsets_;
    std::vector<std::string> formatos_;  // display formats, by the index the pages store
    std::unordered_map<std::string, std::uint64_t> indiceFormatos_;
    std::vector<char> bufer_;
    std::uint64_t tamano_ = 0;
    bool leyendo_ = false;
    bool soloCuenta_ = false;
};

}  // namespace paratzorep::renderer
