#include "app/entry/program.h"

int main(int count, char** parameters) {
    return zorvane::run_program(std::vector<std::string>(parameters, parameters + count));
}
