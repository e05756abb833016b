#include "CommandLine.h"

int main(int argc, char** argv) {
    return static_cast<int>(TolvexPath::RunCommandLine(argc, argv));
}
