#include <cstdio>

int main() {
    std::puts("zolt-cli");
    return 0;
}
