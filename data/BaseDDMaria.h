// Our data-access object: BaseDD over MariaDB Connector/C, with the local work file in SQLite.
#pragma once

#include <string>

#include "host/BaseDD.h"

namespace paratzorep::data {

class BaseDDMaria : public host::BaseDD {
  public:
    BaseDDMaria();

    bool AbrirBdD(host::Conexion& cn, const std::string& base = "", bool bandera = false) override;
    void CierraBdD(host::Conexion& cn) override;
    bool AbrirTabla(host::Recordset& rs, const host::Conexion& cn, const std::string& fuente,
                    std::int32_t opcion = 0, bool bandera = false) override;
    void CierraTabla(host::Recordset& rs) override;
    void DesactivaConexion(host::Recordset& rs) override;
    std::int64_t Executar(const host::Conexion& cn, const std::string& sql) override;
    bool RstExecutar(host::Recordset& rs, const host::Conexion& cn,
                     const std::string& sql) override;
    bool HayTabla(const host::Conexion& cn, const std::string& tabla) override;
    std::int32_t LastRec(const host::Conexion& cn, const std::string& fuente) override;
    std::int64_t LastId(const host::Conexion& cn) override;
    double Sum(const host::Conexion& cn, const std::string& columna,
               const std::string& fuente) override;
    void AddNuevo(host::Recordset& rs) override;
    void RstUpdate(host::Recordset& rs) override;
    void AgregaRegistro(const host::Conexion& cn, const std::string& tabla,
                        const std::vector<std::string>& campos,
                        const std::vector<host::Valor>& valores) override;
    std::int64_t ActualizaRegistro(const host::Conexion& cn, const std::string& tabla,
                                   const std::string& condicion,
                                   const std::vector<std::string>& campos,
                                   const std::vector<host::Valor>& valores) override;
    void PasaCampo(host::Recordset& destino, const host::Recordset& origen,
                   const std::string& campo, const std::string& campoDestino = "") override;
    void CopiaRecordset(host::Recordset& destino, const host::Recordset& origen,
                        const std::vector<std::string>& excepto = {}) override;
    bool AbrirDataSource(host::Recordset& rs, const host::Conexion& cn, const std::string& fuente,
                         const std::string& columnas = "*") override;
    bool AbreBdDAccess(host::Conexion& cn, const std::string& archivo) override;
    void PasaGeneralesAlRpt(
        const host::Conexion& cnLocal,
        const std::vector<std::pair<std::string, host::Valor>>& valores) override;
    std::string UltimoError() const override { return ultimoError_; }
    int UltimoCodigo() const override { return ultimoCodigo_; }

  private:
    void Anota(const std::exception* e);

    std::string ultimoError_;
    int ultimoCodigo_ = 0;
};

}  // namespace paratzorep::data
