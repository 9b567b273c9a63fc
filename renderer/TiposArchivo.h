// The engine's file types: the numeric code that PrintFileType takes, the extension, and
// the text that the export dialog lists. This table is the only place that knows them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace paratzorep::renderer {

enum class TipoArchivo { Txt, Rtf, Xls, Doc, Pdf, Csv, Xlsx };

struct InfoTipoArchivo {
    TipoArchivo tipo;
    int codigo;                  // PrintFileType
    std::string_view extension;  // with the dot: ".txt"
    std::string_view texto;      // as the export dialog lists it
};

// Every type, in the export dialog's order (the system's five first).
std::span<const InfoTipoArchivo> TiposArchivo();

const InfoTipoArchivo& InfoDe(TipoArchivo tipo);
// The type of a PrintFileType code; nullopt for an unknown code.
std::optional<InfoTipoArchivo> TipoPorCodigo(int codigo);
// The type of a file name's extension (case-insensitive); nullopt when none matches.
std::optional<InfoTipoArchivo> TipoPorExtension(std::string_view archivo);

}  // namespace paratzorep::renderer
