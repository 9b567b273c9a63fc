// RTF output of the report's pages. Each page keeps its paper size and margins; the
// texts are regrouped into visual lines (texts whose heights overlap and that do not
// overlap side by side), and each line becomes one paragraph with exact height whose
// pieces sit at tab stops placed where the layout put them (left, right or centre tabs
// after each text's alignment), so columns stay aligned and the document stays editable.
// Vertical gaps become spacing before the paragraph, so the lines stand where the layout
// put them; a text that would share the height of a line but collides with one of its
// pieces (a second text in a header block's corner) goes in a text box at its place
// instead of pushing the lines below it down. Every page after the first starts with a
// page break. Text outside ASCII is written as \uN escapes with a Windows-1252 fallback.
// Lines and boxes become shapes positioned on the page behind the text.
//
// DOC: the "Word para Windows (*.doc)" type writes the same RTF document under the
// .doc name. Word and LibreOffice Writer recognise the content and open it as a
// document; writing Word's binary format would add nothing the reader sees.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "renderer/writers/Escritor.h"

namespace paratzorep::renderer {
namespace detail {
class ArchivoSalida;

// A UTF-8 text as RTF: control characters of RTF escaped, non-ASCII as \uN with a
// fallback character for readers without Unicode.
std::string TextoRtf(std::string_view utf8);

// One printed line of a text, placed on the page.
struct PiezaRtf {
    double base = 0;        // baseline, points from the top of the sheet
    double x0 = 0, x1 = 0;  // where the line's ink starts and ends
    Alineacion alineacion = Alineacion::Izquierda;
    std::uint16_t fuente = 0;
    double tamano = 9;
    const std::string* texto = nullptr;
};

// The page's boxes and lines as RTF shapes positioned on the page, behind the text.
std::string FigurasRtf(const renderer::Pagina& pagina);

// The pieces of a page as paragraphs: lines top to bottom, each left to right; and the
// pieces that go in text boxes.
struct LineasDePagina {
    std::vector<std::vector<PiezaRtf>> lineas;
    std::vector<PiezaRtf> sueltas;
};
LineasDePagina LineasRtf(std::vector<PiezaRtf> piezas);
}  // namespace detail

class EscritorRtf : public Escritor {
  public:
    explicit EscritorRtf(std::filesystem::path archivo);
    ~EscritorRtf() override;

    void Inicia(const Documento& documento) override;
    void Pagina(const renderer::Pagina& pagina) override;
    void Termina() override;

  private:
    void Escribir(const std::string& texto);

    std::filesystem::path ruta_;
    std::unique_ptr<detail::ArchivoSalida> archivo_;
    Documento documento_;
    std::vector<int> familiaDeFuente_;  // Documento::fuentes index -> font table number
    bool primeraPagina_ = true;
    std::string buffer_;
};

std::unique_ptr<Escritor> CreaEscritorRtf(const std::string& archivo);
std::unique_ptr<Escritor> CreaEscritorDoc(const std::string& archivo);

}  // namespace paratzorep::renderer
