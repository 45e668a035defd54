// Shared pieces of the skelvor end-to-end tests: a scratch folder in which
// the program runs, the comparison of a whole run, and the usage text.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "Harness.h"

namespace skelvortest {

using Env = std::vector<std::pair<std::string, std::string>>;

// The usage text that follows an error of use.
inline const std::string& usage() {
    static const std::string text =
        "Usage: skelvor <filename> [-d=<dict>] [-u=<user-dict>] [-cs=big|little] [-bs=<kbytes>] ...\n"
        "       ...     [-D <param1-name>=<param1-value>] ...\n"
        "       ...     [-D<param-file>]\n"
        "       ...     [-V[type] <var1-name>=<var1-expression>] ...\n"
        "       ...     [-i] [-r|b|-B ...] [-x[n]] [-a] [-base[=<struct-name>] ...\n"
        "       ...     [-first=<a>] [-last=<b>] [-step=<s>]]  ...\n"
        "       ...     [<field1> [<field2> ... [<fieldN>]]]\n"
        "\n"
        " <filename>     * path name of the file to read (mandatory). Use '-' for standard input\n"
        " -d=<dict>      * associate dictionary <dict> (relative to VEXA_DICTIONARY_PATH)\n"
        "                  defaulting to 'auto.dd'\n"
        " -u=<user-dict> * appends the definitions of the user provided dictionary <user-dict>\n"
        " -cs=big|little * override coding standard set by dictionary (big/little endian)\n"
        " -bs=<kbytes>   * define the read buffer size (in Kilobytes, default is 5KB)\n"
        " -D <param>=<value> and/or -D<filename>\n"
        "                * defines a constant parameter, or a set of parameters from a definition file\n"
        " -V[type] <record>.<var-field>=<expression>\n"
        "                * adds a virtual field <var-field> to the record <record>\n"
        " -aux[type] <record>.<aux-field>=<aux-filename-expression>\n"
        "                * adds an auxiliary input field <aux-field> to the record <record>\n"
        " -L<src-field> <record>.<link-field>=<link-index-expression>\n"
        "                * adds a virtual link <link-field> in record <record> to field <src-field>\n"
        "\n"
        " <fmt-opts> - output formatting options\n"
        " -i             * just list the data structures without reading the actual data contents\n"
        " -x             * dump fields in hexadecimal together with the interpreted value\n"
        " -xn            * idem -x except hex output of ascii numeric fields translates\n"
        "                  the interpreted number instead of the raw ascii buffer\n"
        " -r             * explode the record structures down to leaf fields\n"
        " -b             * output the selected structures in binary form (no structure/field decoding or "
        "interpretation)\n"
        " -B[<out-prefix>] <filename-stmt>\n"
        "                * same as -b with binary output to a file named according to the defined statement\n"
        "                  optionally concatenated after a given prefix\n"
        " -a             * do not compress repetitions of successive array elements in\n"
        "                  the form <element> (n times).\n"
        "\n"
        " default reading mode - structure reading with automatic first-level exploding\n"
        " Usage:         <fmt-opts> [<field1> [<field2> ... [<fieldN>]]]\n"
        " <field1..N>    * optional selection of structures to read (wildcards supported)\n"
        "\n"
        " record reading mode - explode record <rec> into fields\n"
        " Usage:         -base[=<rec>] <fmt-opts> [<field1> [<field2> ... [<fieldN>]]]\n"
        " <rec>          * name of the record e.g. 'record_1', 'record_1.array_b.4',\n"
        "                  defaulting to the file root record.\n"
        " <field1..N>    * optional selection of output fields (wildcards supported).\n"
        "                  note: output fields of type array-of-records will be output as\n"
        "                  a list of successive records.\n"
        "\n"
        " array reading mode - read array <array> in index range [<a>,<b>] using step <s>\n"
        " Usage:         -base=<array> <fmt-opts> [-first=<a>] [-last=<b>] [-step=<s>] ..\n"
        "                ... [<field1> [<field2> ... [<fieldN>]]]\n"
        " <array>        * name of the array e.g. 'array_1', 'record_1.array_a',\n"
        "                  'array_1.5.record_a.array_d'.\n"
        " <a> <b>        * read index range defaulting to the full range of the array\n"
        " <s>            * reading step defaulting to one (may be set to a negative value\n"
        "                  for array backwards reading).\n"
        " <field1..N>    * optional selection of output fields in case of an array of\n"
        "                  records (wildcards supported).\n"
        "\n";
    return text;
}

// Compares a whole run: status, standard output and standard error.
inline void expectRun(const e2e::Result& r, int status, const std::string& out, const std::string& err) {
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, err);
    EXPECT_EQ(r.status, status);
}

// A run that succeeds without a word on standard error.
inline void expectOut(const e2e::Result& r, const std::string& out) { expectRun(r, 0, out, ""); }

// Each test writes its files into a fresh folder and runs skelvor there, so
// that the paths in messages are short.
class SkelvorTest : public ::testing::Test {
protected:
    e2e::TempDir dir;

    std::string write(const std::string& name, const std::string& bytes) { return dir.write(name, bytes); }

    // Standard input through a pipe, or through a regular file.
    e2e::Result runWithInput(const std::vector<std::string>& args, const std::string& input, bool asFile = false,
                             const Env& env = {}) {
        e2e::RunOptions options;
        options.cwd = dir.path();
        options.env = env;
        options.input = input;
        options.inputIsFile = asFile;
        return e2e::skelvor(args, options);
    }
    e2e::Result run(const std::vector<std::string>& args, const Env& env = {}) {
        return runWithInput(args, "", false, env);
    }
};

}  // namespace skelvortest
