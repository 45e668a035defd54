#include "calc/CalcLogFormat.h"

#include <unistd.h>

#include <ostream>

#include "base/Exception.h"
#include "calc/CalcBinderData.h"
#include "calc/CalcError.h"
#include "calc/CalcParser.h"

namespace zun {

namespace {

// The data binder of that prefix among the binders of a format statement.
CalcBinderData* findDataBinder(CalcBinder* binder, const char* prefix) {
    if (auto* data = dynamic_cast<CalcBinderData*>(binder)) return data->prefix == prefix ? data : nullptr;
    if (auto* list = dynamic_cast<CalcBinderListT<CalcBinderData>*>(binder)) {
        for (long i = 0; i < list->entries.count; ++i)
            if (CalcBinderData* found = findDataBinder(list->entries.data[i], prefix)) return found;
    }
    if (auto* list = dynamic_cast<CalcBinderListT<CalcBinder>*>(binder)) {
        for (long i = 0; i < list->entries.count; ++i)
            if (CalcBinderData* found = findDataBinder(list->entries.data[i], prefix)) return found;
    }
    return nullptr;
}

// Writes the chain of e by format, the deepest cause first; seq is e's place.
void logByFormat(const Exception& e, CalcParser& format, int seq);

void writeLine(const String& line) {
    std::ostream& out = *Exception::err_out;
    if (line.text) out.write(line.text, line.length);
    out << '\n';
    out.flush();
}

}  // namespace

void setLogFormat(const char* format) {
    if (format && *format) {
        Exception::log_fmt = format;
        Exception::formatLogger = &formatLog;
    } else {
        Exception::log_fmt.setNull();
        Exception::formatLogger = nullptr;
    }
}

void formatLog(const Exception& e, const char* prefix, const char* suffix) {
    int pid = static_cast<int>(getpid());
    int ppid = static_cast<int>(getppid());
    CalcBinderDataType<Exception> err("err");
    CalcBinderDataSType<int> seq("err.seq");
    CalcBinderDataSType<const char*> prefixText("prefix", &prefix);
    CalcBinderDataSType<const char*> suffixText("suffix", &suffix);
    CalcBinderDataSType<int> pidValue("pid", &pid);
    CalcBinderDataSType<int> ppidValue("ppid", &ppid);
    CalcBinderListT<CalcBinderData> names;
    names << err << seq << prefixText << suffixText << pidValue << ppidValue;

    try {
        try {
            CalcParser format(Exception::log_fmt.str(), names, false);
            logByFormat(e, format, 0);
        } catch (String& bare) {
            throw CalcError(bare.str());
        }
    } catch (Exception& failure) {
        Exception::log_fmt.setNull();
        failure.logDefault(prefix, suffix);
        e.logDefault(prefix, suffix);
    } catch (...) {
        Exception::log_fmt.setNull();
        e.logDefault(prefix, suffix);
    }
}

namespace {

void logByFormat(const Exception& e, CalcParser& format, int seq) {
    if (e.chained) logByFormat(*e.chained, format, seq + 1);

    CalcBinder& binders = format.binders;
    CalcBinderData* err = findDataBinder(&binders, "err");
    CalcBinderData* errSeq = findDataBinder(&binders, "err.seq");
    int seqValue = seq;
    if (err) err->setObject(&e);
    if (errSeq) errSeq->setObject(&seqValue);

    struct Unbind {
        CalcBinderData* err;
        CalcBinderData* errSeq;
        ~Unbind() {
            if (err) err->setObject(nullptr);
            if (errSeq) errSeq->setObject(nullptr);
        }
    } unbind{err, errSeq};

    format.reset();
    writeLine(format.valStr());
}

}  // namespace

}  // namespace zun
