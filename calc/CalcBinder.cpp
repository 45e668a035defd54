#include "calc/CalcBinder.h"

#include <fstream>
#include <sstream>

#include "calc/CalcParser.h"

namespace zun {

CalcNode* CalcBinderNodeList::bindSymbol(const char* name) {
    if (!name || !*name) return nullptr;
    const char* bare = name + 1;   // behind the sigil
    for (long i = count - 1; i >= 0; --i) {
        CalcNode* node = data[i];
        if (node && node->name == bare) return new CalcNodeLink(name, node);
    }
    return nullptr;
}

CalcNode* CalcBinderNodeList::find(const char* name) const {
    if (!name) return nullptr;
    for (long i = count - 1; i >= 0; --i) {
        CalcNode* node = data[i];
        if (node && node->name == name) return node;
    }
    return nullptr;
}

int CalcBinderNodeList::readDefinitions(const char* path) {
    std::ifstream file;
    if (path) file.open(path, std::ios::in | std::ios::binary);
    std::istringstream empty;
    std::istream& in = file.is_open() ? static_cast<std::istream&>(file) : empty;

    CalcParser parser(in, static_cast<CalcBinder*>(nullptr), false);
    std::list<CalcNode*> vars;
    parser.listVars(vars, "*", nullptr, true);
    int added = 0;
    for (CalcNode* var : vars) {
        if (var->valType() == ValNum)
            *this << new CalcNodeConst<double>(var->name.text, var->valNum());
        else
            *this << new CalcNodeConst<String>(var->name.text, var->valStr());
        ++added;
    }
    return added;
}

}  // namespace zun
