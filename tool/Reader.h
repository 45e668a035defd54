// The skelvor program: its command line, its usage text and its run.
#pragma once

// The whole run of skelvor inside the error frame: options, tree, output.
int skelvorMain(int argc, char** argv);
// The usage text, on standard error.
void skelvorUsage();
