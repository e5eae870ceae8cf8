#include "FormatTool.h"

int main(int argc, char** argv) {
    return TarnFormat::RunProgram(argc, argv);
}
