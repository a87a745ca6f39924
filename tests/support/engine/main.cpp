#include "EngineProcess.h"
#include "RunnerProcess.h"

#include <iostream>
#include <string_view>

int main(int argc, char **argv)
{
    const std::string_view command = argc > 1 ? argv[1] : "";
    if (command == "serve") {
        return demo::serve();
    }
    if (command == "--version" || command == "-v") {
        return demo::printVersion();
    }
    if (command == "runner") {
        return demo::runnerMain();
    }
    std::cerr << "Usage: demo-engine serve | --version\n";
    return 1;
}
