// The screen preview on a terminal: the text pages go through the user's pager ($PAGER, or
// less when it is installed), fitted to the terminal's width. Piped or redirected, standard
// output gets the plain pages as they are.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>

namespace paratzorep::cli {

class Pantalla {
  public:
    // A pager when standard output is a terminal and one can be started; null otherwise.
    static std::unique_ptr<Pantalla> Abre();
    // Closes the pipe and waits until the user leaves the pager.
    ~Pantalla();
    Pantalla(const Pantalla&) = delete;
    Pantalla& operator=(const Pantalla&) = delete;

    std::ostream& Flujo() { return flujo_; }
    // The terminal's width in columns.
    int Columnas() const { return columnas_; }

  private:
    // Writes to the pager's pipe; a pager that has quit makes writes fail with EPIPE.
    class Tubo : public std::streambuf {
      public:
        explicit Tubo(std::FILE* f) : f_(f) {}

      protected:
        int_type overflow(int_type c) override;
        std::streamsize xsputn(const char* s, std::streamsize n) override;
        int sync() override;

      private:
        std::FILE* f_;
    };

    Pantalla(std::FILE* tubo, pid_t paginador, int columnas);

    std::FILE* tubo_;
    pid_t paginador_;
    Tubo bufer_;
    std::ostream flujo_;
    int columnas_;
    void (*senalAnterior_)(int) = nullptr;
};

namespace detail {
// The pager to run: $PAGER when set (empty or "cat": none), else "less" when on the PATH.
std::string Paginador();
// Columns of the terminal on `fd` ($COLUMNS, then 80, when it does not say).
int ColumnasTerminal(int fd);
}  // namespace detail

}  // namespace paratzorep::cli
