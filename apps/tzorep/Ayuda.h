// What tzorep says about itself: its version, the summary of its commands, each command's
// help (`tzorep help COMMAND`, `COMMAND --help`) and the did-you-mean suggestion for a word
// it does not know.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace paratzorep::cli {

// "tzorep 0.1.0 (ParaTZOrep para Linux; plantillas versión 1)".
std::string Version();

// The summary of every command (tzorep --help, tzorep help).
const char* UsoGeneral();

// The commands, in the order the summary lists them.
const std::vector<std::string>& Ordenes();

// The help of one command; false when there is no such command.
bool AyudaDe(const std::string& orden, std::ostream& salida);

// Whether the words of a command ask for its help (-h or --help among them).
bool PideAyuda(const std::vector<std::string>& args);

// The known word nearest to `palabra` (letter case aside), when near enough to be a slip of
// the fingers: at most one edit in a short word, two in a long one, or the start of only one
// word. "" when none is.
std::string Parecida(const std::string& palabra, const std::vector<std::string>& conocidas);

// " ¿Quiso decir 'X'?" for a near word, "" otherwise.
std::string QuisoDecir(const std::string& palabra, const std::vector<std::string>& conocidas);

namespace detail {
// Edits (insert, delete, replace, swap of two neighbours) between two words, by character.
std::size_t Distancia(const std::string& a, const std::string& b);
}  // namespace detail

}  // namespace paratzorep::cli
