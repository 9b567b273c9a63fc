#include "data/CargaLocal.h"

#include "data/ConexionLocal.h"

namespace paratzorep::data {

namespace {

constexpr const char* kAccion = "Llenar el archivo de trabajo local";

ConexionLocal& Local(const host::Conexion& cn) {
    auto* local = dynamic_cast<ConexionLocal*>(&detail::Interna(cn, kAccion));
    if (local == nullptr)
        throw host::ErrorDatos(kAccion, "", 0, "la conexión no es el archivo de trabajo local");
    return *local;
}

}  // namespace

CargaLocal::CargaLocal(const host::Conexion& local) : local_(&Local(local)) {
    local_->Ejecuta("BEGIN", kAccion);
}

CargaLocal::~CargaLocal() {
    if (confirmada_ || !local_->Abierta()) return;
    try {
        local_->Ejecuta("ROLLBACK", kAccion);
    } catch (...) {
        // Closing the file without a commit discards the transaction anyway.
    }
}

void CargaLocal::Rehace(const std::string& tabla) {
    const std::string definicion = ConexionLocal::Definicion(tabla);
    if (definicion.empty()) {
        local_->Ejecuta("DELETE FROM " + local_->Identificador(tabla), kAccion);
        return;
    }
    local_->Ejecuta("DROP TABLE IF EXISTS " + local_->Identificador(tabla), kAccion);
    local_->Ejecuta(definicion, kAccion);
}

std::int64_t CargaLocal::Copia(const host::Conexion& origen, const std::string& sql,
                               const std::string& tabla, const std::vector<std::string>& columnas) {
    std::string insert = "INSERT INTO " + local_->Identificador(tabla) + " (";
    std::string marcas;
    for (const auto& c : columnas) {
        insert += (marcas.empty() ? "" : ",") + local_->Identificador(c);
        marcas += marcas.empty() ? "?" : ",?";
    }
    insert += ") VALUES (" + marcas + ")";
    InsercionLocal insercion(*local_, insert, kAccion);
    std::int64_t filas = 0;
    detail::Interna(origen, kAccion)
        .Recorre(sql, "Leer las filas para el archivo de trabajo local",
                 [&](const detail::FilaTexto& fila) {
                     insercion.Inserta(fila);
                     ++filas;
                 });
    return filas;
}

void CargaLocal::Confirma() {
    local_->Ejecuta("COMMIT", kAccion);
    confirmada_ = true;
}

}  // namespace paratzorep::data
