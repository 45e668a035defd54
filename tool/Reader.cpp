#include "tool/Reader.h"

#include <cerrno>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "base/JulianDate.h"
#include "dict/File.h"
#include "struct/StructAlias.h"
#include "struct/StructBase.h"
#include "struct/StructElem.h"
#include "tool/Args.h"
#include "tool/MainError.h"
#include "tool/ReadBase.h"

using zun::String;

namespace {

const char* const usageLines[] = {
    "Usage: skelvor <filename> [-d=<dict>] [-u=<user-dict>] [-cs=big|little] [-bs=<kbytes>] ...",
    "       ...     [-D <param1-name>=<param1-value>] ...",
    "       ...     [-D<param-file>]",
    "       ...     [-V[type] <var1-name>=<var1-expression>] ...",
    "       ...     [-i] [-r|b|-B ...] [-x[n]] [-a] [-base[=<struct-name>] ...",
    "       ...     [-first=<a>] [-last=<b>] [-step=<s>]]  ...",
    "       ...     [<field1> [<field2> ... [<fieldN>]]]",
    "",
    " <filename>     * path name of the file to read (mandatory). Use '-' for standard input",
    " -d=<dict>      * associate dictionary <dict> (relative to VEXA_DICTIONARY_PATH)",
    "                  defaulting to 'auto.dd'",
    " -u=<user-dict> * appends the definitions of the user provided dictionary <user-dict>",
    " -cs=big|little * override coding standard set by dictionary (big/little endian)",
    " -bs=<kbytes>   * define the read buffer size (in Kilobytes, default is 5KB)",
    " -D <param>=<value> and/or -D<filename>",
    "                * defines a constant parameter, or a set of parameters from a definition file",
    " -V[type] <record>.<var-field>=<expression>",
    "                * adds a virtual field <var-field> to the record <record>",
    " -aux[type] <record>.<aux-field>=<aux-filename-expression>",
    "                * adds an auxiliary input field <aux-field> to the record <record>",
    " -L<src-field> <record>.<link-field>=<link-index-expression>",
    "                * adds a virtual link <link-field> in record <record> to field <src-field>",
    "",
    " <fmt-opts> - output formatting options",
    " -i             * just list the data structures without reading the actual data contents",
    " -x             * dump fields in hexadecimal together with the interpreted value",
    " -xn            * idem -x except hex output of ascii numeric fields translates",
    "                  the interpreted number instead of the raw ascii buffer",
    " -r             * explode the record structures down to leaf fields",
    " -b             * output the selected structures in binary form (no structure/field decoding or interpretation)",
    " -B[<out-prefix>] <filename-stmt>",
    "                * same as -b with binary output to a file named according to the defined statement",
    "                  optionally concatenated after a given prefix",
    " -a             * do not compress repetitions of successive array elements in",
    "                  the form <element> (n times).",
    "",
    " default reading mode - structure reading with automatic first-level exploding",
    " Usage:         <fmt-opts> [<field1> [<field2> ... [<fieldN>]]]",
    " <field1..N>    * optional selection of structures to read (wildcards supported)",
    "",
    " record reading mode - explode record <rec> into fields",
    " Usage:         -base[=<rec>] <fmt-opts> [<field1> [<field2> ... [<fieldN>]]]",
    " <rec>          * name of the record e.g. 'record_1', 'record_1.array_b.4',",
    "                  defaulting to the file root record.",
    " <field1..N>    * optional selection of output fields (wildcards supported).",
    "                  note: output fields of type array-of-records will be output as",
    "                  a list of successive records.",
    "",
    " array reading mode - read array <array> in index range [<a>,<b>] using step <s>",
    " Usage:         -base=<array> <fmt-opts> [-first=<a>] [-last=<b>] [-step=<s>] ..",
    "                ... [<field1> [<field2> ... [<fieldN>]]]",
    " <array>        * name of the array e.g. 'array_1', 'record_1.array_a',",
    "                  'array_1.5.record_a.array_d'.",
    " <a> <b>        * read index range defaulting to the full range of the array",
    " <s>            * reading step defaulting to one (may be set to a negative value",
    "                  for array backwards reading).",
    " <field1..N>    * optional selection of output fields in case of an array of",
    "                  records (wildcards supported).",
    "",
};

// Throws the MainError for an -first, -last or -step option given without -base.
void refuseRangeOption(zun::Args& args, const char* name) {
    if (args.option(name, '=')) throw MainError(2, (String("option ") + name + " invalid without -base option").str());
}

// The -first and -last values: a non-negative integer.
long rangeValue(const char* text, const char* name) {
    String v(text);
    if (!v.isInteger() || v[0] == '-')
        throw MainError(2, (String("positive integer expected for ") + name + " option").str());
    return v.toLong();
}

vexa::File::ByteOrder codingStandard(zun::Args& args) {
    const char* cs = args.option("-cs", '=');
    if (!cs || !*cs) return vexa::File::ByteOrder(-2);
    String v(cs);
    if (v == "local") return vexa::File::ByteOrder(-1);
    if (v == "big") return vexa::File::ByteOrder(0);
    if (v == "little") return vexa::File::ByteOrder(1);
    throw MainError(2, (String("invalid coding standard option -cs=") + v).str());
}

// The -bs value: kilobytes, of either sign, whose count of bytes a long holds.
long bufferKBytes(zun::Args& args) {
    const char* bs = args.option("-bs", '=');
    if (!bs) return 5;
    String v(bs);
    const long most = LONG_MAX / 1024;
    errno = 0;
    long kbytes = v.isInteger() ? std::strtol(v.str(), nullptr, 10) : 0;
    bool inRange = v.isInteger() && errno == 0 && kbytes >= -most && kbytes <= most;
    errno = 0;
    if (!inRange) throw MainError(2, (String("invalid buffer size definition -bs=") + v + " (KBytes)").str());
    return kbytes;
}

void globalParameters(zun::Args& args) {
    while (const char* d = args.option("-D", 0)) {
        if (*d) {
            vexa::File::addGlobalParameter("", d);
            continue;
        }
        const char* def = args.nextOption();
        if (!def) throw MainError(2, "missing definition after -D option");
        String text(def);
        int eq = text.find('=');
        if (eq < 0) vexa::File::addGlobalParameter(text.str(), "");
        else vexa::File::addGlobalParameter(text.substr(0, eq - 1).str(), text.substr(eq + 1).str());
    }
}

// Options that add definitions to the tree; they aren't available in this
// version of the reader, and are refused rather than read as field names.
void definitionOptions(zun::Args& args) {
    struct { const char* name; char sep; } const options[] = {{"-V", 0}, {"-aux", 0}, {"-link", '='}};
    for (const auto& o : options) {
        if (args.option(o.name, o.sep))
            throw MainError(2, (String("option ") + o.name + " is not supported by this version").str());
    }
}

int positionWidth(vexa::File& file) {
    double digits = std::log10(static_cast<double>(file.getPhysicalSize())) + 1;
    if (!std::isfinite(digits) || digits < 1) return 8;
    return static_cast<int>(digits);
}

}  // namespace

void skelvorUsage() {
    for (const char* line : usageLines) std::cerr << line << '\n';
    std::cerr.flush();
}

int skelvorMain(int argc, char** argv) {
    zun::Args args(argc, argv);
    if (args.count() < 2) throw MainError(1, "missing arguments");

    String fileName(args.param(1));
    String dictionary(args.option("-d", '='));
    String fileParams = vexa::File::fileParameters(fileName);
    if (!fileParams.isNull()) dictionary += fileParams;

    setlocale(LC_CTYPE, "C");
    vexa::File::ByteOrder order = codingStandard(args);
    long kbytes = bufferKBytes(args);
    globalParameters(args);

    const char* path = fileName == "-" ? nullptr : fileName.text;
    vexa::File file(dictionary.str(), path, kbytes, order);
    file.importDictionary(args.option("-u", '='));

    String base(args.option("-base", '='));
    bool structOnly = args.optional("-i");
    definitionOptions(args);
    int width = positionWidth(file);

    const char* xopt = args.option("-x", 0);
    if (xopt && *xopt && String(xopt) != "n")
        throw MainError(1, (String("invalid option -x") + xopt).str());
    bool compress = !args.optional("-a");

    bool explode = args.optional("-r");
    BinOutput stdoutBin(std::cout);
    BinOutput* bin = nullptr;
    if (!explode) {
        if (args.optional("-b")) bin = &stdoutBin;
        else if (args.option("-B", 0))
            throw MainError(2, "option -B is not supported by this version");
    }
    zun::JulianDate::d_precision = 6;

    vexa::StructBase& root = file.getRoot();
    FieldList fields;
    if (!base.isNull()) {
        vexa::StructElem* element = root.getChild(base.text);
        long first = 0, last = -1, step = 1;
        if (const char* v = args.option("-first", '=')) {
            if (!element->isAnArray()) throw MainError(2, "option -first valid only for array records");
            first = rangeValue(v, "-first");
        }
        if (const char* v = args.option("-last", '=')) {
            if (!element->isAnArray()) throw MainError(2, "option -last valid only for array records");
            last = rangeValue(v, "-last");
        }
        if (const char* v = args.option("-step", '=')) {
            if (!element->isAnArray()) throw MainError(2, "option -step valid only for array records");
            String s(v);
            if (!s.isInteger()) throw MainError(2, "integer expected for -step option");
            step = s.toLong();
            if (step == 0) step = 1;
        }
        args.seekUnusedOption(false);
        while (const char* f = args.unusedOption()) fields << String(f);
        if (structOnly) read_base_struct(*element, fields, explode);
        else read_base(*element, fields, bin, xopt, explode, compress, width, first, last, step);
        return 0;
    }

    refuseRangeOption(args, "-first");
    refuseRangeOption(args, "-last");
    refuseRangeOption(args, "-step");
    FieldList patterns;
    args.seekUnusedOption(false);
    while (const char* f = args.unusedOption()) patterns << String(f);
    String rest;
    if (args.unusedOptions(rest) > 0) throw MainError(1, (String("invalid option(s): ") + rest).str());

    zun::ObjAppendListP<vexa::StructAlias> aliases;
    if (patterns.count == 0) {
        root.childList("*", false, aliases);
    } else {
        for (long i = 0; i < patterns.count; ++i) {
            if (root.childList(patterns[i].str(), false, aliases) == 0)
                MainError(0, (patterns[i] + " no match found").str()).log("WARNING-");
        }
    }
    FieldList none;
    for (long i = 0; i < aliases.count; ++i) {
        vexa::StructElem* element = aliases[i].resolve();
        if (structOnly) read_base_struct(*element, none, explode);
        else read_base(*element, none, bin, xopt, explode, compress, width, 0, -1, 1);
    }
    return 0;
}
