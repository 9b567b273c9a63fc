// The tzorep program's commands. main.cpp parses the global options and
// dispatches; each command lives in its own source file.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace paratzorep::cli {

struct Contexto {
    std::filesystem::path home;  // --home DIR, TZOREP_HOME, or the default
};

// Each returns the process exit status: 0 done, 1 failed (message on stderr),
// 2 usage error. `args` holds the words after the command's own name.
int cmdDb(const Contexto& ctx,
          const std::vector<std::string>& args);  // db start|stop|status (CmdDb.cpp)
int cmdDbDemo(
    const Contexto& ctx,
    const std::vector<std::string>& args);  // db demo [--scale N] [--seed S] (CmdDemo.cpp)
int cmdList(const Contexto& ctx, const std::vector<std::string>& args);  // list (CmdList.cpp)
int cmdTemplates(
    const Contexto& ctx,
    const std::vector<std::string>& args);  // templates list|import|export (CmdTemplates.cpp)
int cmdShow(const Contexto& ctx,
            const std::vector<std::string>& args);  // show ENTRY ... (CmdShow.cpp)
int cmdPrint(const Contexto& ctx,
             const std::vector<std::string>& args);  // print ENTRY ... (CmdPrint.cpp)
int cmdPress(const Contexto& ctx,
             const std::vector<std::string>& args);  // press ENTRY BUTTON ... (CmdPress.cpp)
int cmdPrinters(const Contexto& ctx,
                const std::vector<std::string>& args);  // printers (CmdPrinters.cpp)
int cmdMovEnLinea(const Contexto& ctx,
                  const std::vector<std::string>& args);  // movenlinea ... (CmdMovEnLinea.cpp)

}  // namespace paratzorep::cli
