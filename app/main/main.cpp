// Entry point of the `latticebender` program.
int lbMain(int argc, char** argv);

int main(int argc, char** argv) { return lbMain(argc, argv); }
