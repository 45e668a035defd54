#include "calc/CalcError.h"

namespace zun {

namespace {

String argsMessage(const char* function, const char* bound, long n) {
    String s("Function ");
    s += quoted(function);
    s += " takes ";
    s += bound;
    s += ' ';
    s << n;
    s += " argument(s)";
    return s;
}

String callMessage(const char* function, const char* text) {
    String s(text ? text : "");
    s += " in call to function ";
    s += quoted(function);
    return s;
}

String symbolMessage(const char* context, const char* symbol) {
    String s(context ? context : "");
    s += " while evaluating symbol ";
    s += quoted(symbol);
    return s;
}

String operationMessage(const char* operation, const char* detail) {
    String s("Operation ");
    s += quoted(operation);
    s += " is invalid or incompatible";
    if (detail) {
        s += "  (";
        s += detail;
        s += ')';
    }
    return s;
}

int clampColumn(int column, int length) {
    if (column < 0) return 0;
    return column > length ? length : column;
}

}  // namespace

CalcError& CalcError::chainStmt(const char* statement, int first, int last) {
    String text(statement ? statement : "");
    int open = clampColumn(first - 1, text.length);
    int close = clampColumn(last, text.length);
    static const char closeMark[] = " <<< ";
    text.insert(close, closeMark);
    text.insert(open <= close ? open : open + static_cast<int>(sizeof closeMark) - 1, " >>> ");
    text.escape(true);
    text.quote('(');
    if (message.length > 0) message += ' ';
    message += "in statement ";
    message += text;
    return *this;
}

CalcErrorArgsMissing::CalcErrorArgsMissing(const char* function, long n)
    : CalcError(argsMessage(function, "at least", n).str()) {}

CalcErrorArgsTooMany::CalcErrorArgsTooMany(const char* function, long n)
    : CalcError(argsMessage(function, "at most", n).str()) {}

CalcErrorFunctionCallInvalid::CalcErrorFunctionCallInvalid(const char* function, const char* text)
    : CalcError(callMessage(function, text).str()) {}

CalcErrorSymbolInvalid::CalcErrorSymbolInvalid(const char* symbol) : CalcError(quoted(symbol).str()) {}

CalcErrorSymbolInvalid::CalcErrorSymbolInvalid(const char* context, const char* symbol)
    : CalcError(symbolMessage(context, symbol).str()) {}

CalcErrorOperationInvalid::CalcErrorOperationInvalid(const char* operation, const char* detail)
    : CalcError(operationMessage(operation, detail).str()) {}

}  // namespace zun
