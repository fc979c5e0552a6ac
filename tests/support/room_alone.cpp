// The whole of a program that holds a room and the rooms below it. It has nothing to do: it shows
// that it can be linked.
int main() {}
