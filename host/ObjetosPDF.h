// The PDF printer's automation objects (objPDFCreator and objPDFopt of the session). The report
// runner sets options by name (AutosaveDirectory, AutosaveFilename ...) before a PDF run, hands
// them to the printer through cOptions, and stops the printer afterwards (cPrinterStop).
#pragma once

#include <map>
#include <memory>
#include <string>

namespace paratzorep::host {

// A set of PDF printer options, by name (names compared as given).
class PDFOpciones {
  public:
    virtual ~PDFOpciones() = default;

    // Sets an option.
    virtual void Opcion(const std::string& nombre, const std::string& valor) {
        opciones_[nombre] = valor;
    }
    // Reads an option; "" when not set.
    virtual std::string Opcion(const std::string& nombre) const {
        auto it = opciones_.find(nombre);
        return it == opciones_.end() ? std::string() : it->second;
    }
    // Every option set, for copying and restoring.
    const std::map<std::string, std::string>& Todas() const { return opciones_; }

  private:
    std::map<std::string, std::string> opciones_;
};

// The PDF printer.
class PDFCreator {
  public:
    virtual ~PDFCreator() = default;

    // The printer's current options; the runner sets them before a run and restores them after.
    virtual std::shared_ptr<PDFOpciones> cOptions() const { return opciones_; }
    virtual void cOptions(std::shared_ptr<PDFOpciones> opciones) {
        opciones_ = std::move(opciones);
    }
    // Stops (true) or resumes (false) the printer's queue.
    virtual void cPrinterStop(bool detener) { detenida_ = detener; }
    virtual bool cPrinterStop() const { return detenida_; }

  private:
    std::shared_ptr<PDFOpciones> opciones_ = std::make_shared<PDFOpciones>();
    bool detenida_ = false;
};

}  // namespace paratzorep::host
