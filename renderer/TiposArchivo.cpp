#include "renderer/TiposArchivo.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace paratzorep::renderer {

namespace {

// The codes are ours (the original engine's were never written down): small numbers of at
// most two digits, as the export dialog reads them back from its list texts. The texts of
// the system's five types are the dialog's own, trailing blanks included.
constexpr std::array<InfoTipoArchivo, 7> kTipos = {{
    {TipoArchivo::Txt, 2, ".txt", "Archivo de texto (*.txt)            "},
    {TipoArchivo::Rtf, 4, ".rtf", "Formato de texto enriquecido (*.rtf)"},
    {TipoArchivo::Xls, 21, ".xls", "Excel 5.0 (*.xls)                   "},
    {TipoArchivo::Doc, 17, ".doc", "Word para Windows (*.doc)           "},
    {TipoArchivo::Pdf, 31, ".pdf", "Formato de Documento Portable (*.pdf)           "},
    {TipoArchivo::Csv, 5, ".csv", "Valores separados por comas (*.csv) "},
    {TipoArchivo::Xlsx, 36, ".xlsx", "Libro de Excel (*.xlsx)             "},
}};

}  // namespace

std::span<const InfoTipoArchivo> TiposArchivo() {
    return kTipos;
}

const InfoTipoArchivo& InfoDe(TipoArchivo tipo) {
    return *std::find_if(kTipos.begin(), kTipos.end(),
                         [&](const InfoTipoArchivo& i) { return i.tipo == tipo; });
}

std::optional<InfoTipoArchivo> TipoPorCodigo(int codigo) {
    for (const auto& i : kTipos)
        if (i.codigo == codigo) return i;
    return std::nullopt;
}

std::optional<InfoTipoArchivo> TipoPorExtension(std::string_view archivo) {
    auto punto = archivo.rfind('.');
    if (punto == std::string_view::npos) return std::nullopt;
    std::string ext(archivo.substr(punto));
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (const auto& i : kTipos)
        if (i.extension == ext) return i;
    return std::nullopt;
}

}  // namespace paratzorep::renderer
