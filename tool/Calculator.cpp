#include "tool/Calculator.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <iostream>

#include "base/JulianDate.h"
#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcError.h"
#include "calc/CalcParser.h"
#include "tool/Args.h"
#include "tool/MainError.h"

namespace {

using zun::String;
using zun::quoted;

// The rows of -n: what "iter" counts, as the index of an innermost array.
// It is the only iterator of the program: without -n, or for any level but
// the innermost, asking for one is an error of the statement.
class Rows : public zun::CalcBinder {
public:
    long total;  // -1 without -n
    long index = 0;

    explicit Rows(long total) : total(total) {}
    zun::CalcIterator* bindIterator(int level) override;
};

class RowIterator : public zun::CalcIterator {
public:
    explicit RowIterator(Rows& rows) : CalcIterator(0), rows(rows) {}
    long count() override { return rows.total; }
    long getIndex() override { return rows.index; }
    void setIndex(long i) override { rows.index = i; }

private:
    Rows& rows;
};

zun::CalcIterator* Rows::bindIterator(int level) {
    if (total < 0 || level != 0) throw zun::CalcErrorIterator("no bindIterator function");
    return new RowIterator(*this);
}

const char* const usageLines[] = {
    "Usage: skelvor-calc [-n <count>] [-D <name>=<value>] ... [-D<definitions-file>] ... <statement>",
    "",
    " <statement>        * the statement to evaluate (mandatory); its value is printed on one line:",
    "                      a number as such ('nan' when undefined), a text quoted and escaped,",
    "                      raw bytes in hexadecimal within brackets",
    " -n <count>         * evaluates the statement <count> times, one line each, with 'iter'",
    "                      counting the rows from 0 to <count>-1",
    " -D <name>=<value>  * defines a text parameter, reached as #<name> in the statement",
    " -D<filename>       * defines the variables of a definitions file as parameters (#<name>)",
    "",
    " Options may stand in any order and -D may be repeated; the one argument that is not an",
    " option is the statement. A statement that begins with -D or is -n is written with a",
    " leading blank, e.g. ' -Dx'.",
    "",
};

long rowCount(const char* text) {
    String value(text);
    bool digits = value.length > 0 && value.length <= 18;
    for (int i = 0; digits && i < value.length; ++i) digits = value.text[i] >= '0' && value.text[i] <= '9';
    if (!digits) throw MainError(2, ("invalid row count for -n option: " + quoted(text)).text);
    return static_cast<long>(value.toLLong());
}

// "-D <name>=<value>": a text parameter, whatever the value looks like.
void addParameter(zun::CalcBinderNodeList& parameters, const char* definition) {
    String text(definition);
    int eq = text.find('=');
    if (eq < 1) throw MainError(2, ("invalid definition after -D option: " + quoted(definition)).text);
    String name = text.substr(0, eq - 1);
    String value = text.substr(eq + 1, -1);
    parameters << new zun::CalcNodeConst<String>(name.text, value);
}

// One line of output. A line that can't be written ends the run: the rows
// behind it would fail as well.
void printLine(const String& text) {
    errno = 0;
    if (text.text) std::cout.write(text.text, text.length);
    std::cout << '\n';
    if (!std::cout || std::ferror(stdout)) flushOutput();
}

int calcMain(int argc, char** argv) {
    zun::Args args(argc, argv);
    if (args.count() < 2) throw MainError(1, "missing arguments");
    setlocale(LC_CTYPE, "C");
    zun::JulianDate::d_precision = 6;
    args.param(0);

    long rows = -1;
    if (args.optional("-n")) {
        const char* count = args.nextOption();
        if (!count) throw MainError(2, "missing row count after -n option");
        rows = rowCount(count);
    }

    zun::CalcBinderNodeList parameters;
    while (const char* definition = args.option("-D", 0)) {
        if (*definition) {
            parameters.readDefinitions(definition);
            continue;
        }
        const char* assignment = args.nextOption();
        if (!assignment) throw MainError(2, "missing definition after -D option");
        addParameter(parameters, assignment);
    }

    args.seekUnusedOption(false);
    const char* statement = args.unusedOption();
    if (!statement) throw MainError(1, "missing arguments");
    String unused;
    if (args.unusedOptions(unused) > 0) throw MainError(1, ("invalid option(s): " + unused).text);

    Rows iteration(rows);
    zun::CalcParser parser(parameters);
    parser.binders << static_cast<zun::CalcBinder&>(iteration);
    parser.init(statement, false);

    zun::CalcNode* result = parser.getVar(nullptr);
    if (rows < 0) {
        printLine(result->valPrint());
    } else {
        for (long i = 0; i < rows; ++i) {
            iteration.index = i;
            parser.reset();
            printLine(result->valPrint());
        }
    }
    return 0;  // the frame writes what is left of the output
}

}  // namespace

void skelvorCalcUsage() {
    for (const char* line : usageLines) std::cerr << line << '\n';
    std::cerr.flush();
}

// A bare text thrown by the expression language is an error of the statement.
int skelvorCalcMain(int argc, char** argv) {
    try {
        return calcMain(argc, argv);
    } catch (String& text) {
        throw zun::CalcError(text.str());
    }
}
