#include "assay/CommandLine.h"

int main(int argc, char** argv) {
    return Tarnex::Assay::RunCommandLine(argc, argv);
}
