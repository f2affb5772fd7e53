// Writes builtin_tables.cpp: generate_builtin_tables FILE
#include <cstdio>
#include <fstream>

#include "front/generate_builtin_tables.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: generate_builtin_tables FILE\n", stderr);
        return 2;
    }
    std::ofstream file(argv[1], std::ios::binary);
    file << ko::builtin::sourceOf(ko::builtin::generateRgbToCmyk());
    file.close();
    return file ? 0 : 1;
}
