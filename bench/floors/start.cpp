// A process that does nothing.
int main() {}
