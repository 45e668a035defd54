// The skelvor-calc program: it evaluates one statement of the expression
// language and prints its value, once, or once per row of an iteration.
#pragma once

// The whole run of skelvor-calc inside the error frame: options, statement,
// output.
int skelvorCalcMain(int argc, char** argv);
// The usage text, on standard error.
void skelvorCalcUsage();
