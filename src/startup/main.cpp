#include "startup/Desktop.h"

int main(int argc, char** argv) {
    return korvalin::RunDesktop(argc, argv);
}
