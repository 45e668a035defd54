// skelvor-calc: evaluates one statement of the expression language.
#include "tool/Calculator.h"
#include "tool/MainError.h"

int main(int argc, char** argv) { return mainFrame(argc, argv, skelvorCalcMain, skelvorCalcUsage); }
