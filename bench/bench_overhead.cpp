// placeholder while being written
int main() { return 0; }
