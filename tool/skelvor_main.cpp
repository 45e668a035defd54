// skelvor: reads a binary file through a data dictionary.
#include "tool/MainError.h"
#include "tool/Reader.h"

int main(int argc, char** argv) { return mainFrame(argc, argv, skelvorMain, skelvorUsage); }
