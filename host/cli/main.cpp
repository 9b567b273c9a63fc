#include <cstdio>

int main() {
    std::puts("tzorep");
    return 0;
}
