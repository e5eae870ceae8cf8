#include "HostMain.h"

int main(int argc, char** argv) {
    return TarnHost::Main({argv + (argc > 0 ? 1 : 0), argv + argc});
}
