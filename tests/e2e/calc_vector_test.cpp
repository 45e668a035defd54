// skelvor-calc end to end: vectors, their generations, positions and modifiers.
#include "calc_expect.h"

using namespace calce2e;

TEST(CalcVectors, ShapeAndElements) {
    expectValue("a = vector(2,2)[1,2,3,4]; a", "{{1,2},{3,4}}");
    expectValue("a = vector(2,2)[1,2,3,4]; a[1,0]", "3");
    expectValue("a = vector()[1,2,3]; a", "{1,2,3}");        // the size from the list
    expectValue("a = vector(4)[1,2]; a", "{1,2,1,2}");       // a short list repeats
    expectValue("a = vector(2)[1,2,3]; a", "{1,2}");         // a long one is cut
    expectValue("vector(2)[vector(2)[1,2], 3]", "{{1,2},3}");
    expectValue("a = vector(2.7)['a,b', min(1,2)]; a", "{\"a,b\",1}");
    expectValue("a = vector(2,3)[$1*10 + $2]; a", "{{0,1,2},{10,11,12}}");
    expectValue("a = vector(2,2,2)[$1,$2,$3,7]; a", "{{{0,0},{0,7}},{{1,0},{0,7}}}");
    expectValue("vector(3)[1,2,3]", "{1,2,3}");
    expectValue("vector(2)", "{}");
    expectValue("a = vector(nan)[1]; a", "{}");
}

TEST(CalcVectors, SizeDimsAndIndices) {
    expectValue("a = vector(2,3)[1]; a@size(0) << a@size(2) << a@dims", "\"632\"");
    expectValue("a = vector(2,3)[1]; a@size(3)", "nan");
    expectValue("a = vector(3)[1,2,3]; a[9]", "nan");
    expectValue("a = vector(3)[1,2,3]; a[-1]", "nan");
    expectValue("a = vector(3)[1,2,3]; a[1.9]", "2");
    expectValue("a = vector(3)[1,2,3]; b = vector(3); c = vector(2)['x','y']; isna(a[nan], a[1.0e300], b[0], c[5])",
                "1");
    expectValue("a = vector(2,3,2)[0,1,2,3,4,5,6,7,8,9,10,11]; a[1,2,1] << a[0,1,0]", "\"112\"");
    expectValue("a = vector(-3); b = vector(0, 1.0e300); a@size(0) << b@size(0)", "\"00\"");
    expectValue("a = vector(2)[1,'x']; a[1]", "\"x\"");
    expectValue("a = vector(2)[1,2]; b = a; b[0] + b[1]", "3");
    expectRows(3, "a = vector(3)[10,20,30]; a[iter]", "10\n20\n30\n");
}

TEST(CalcVectors, Generations) {
    expectValue("a = vector(3)[$0+1]; a", "{nan,nan,nan}");  // no generation before the first
    expectValue("a = vector(3)[1,2,3][$0*10]; a", "{10,20,30}");
    expectValue("a = vector(2)[5,6]; b = vector(a); b", "{5,6}");
    expectValue("a = vector(2)[5,6]; b = vector(a)[$0*2 + $1]; b", "{10,13}");
    // Through its variable, any other method name adds a generation.
    expectValue("a = vector(2)[1,2]; b = a@next(7,8); a", "{7,8}");
    expectValue("a = vector(2)[1,2]; a@shift(5)", "{5,5}");
    expectValue("vector(2)@shift(1)[1,2]", "{1,2}");
}

TEST(CalcVectors, ElementsAsArguments) {
    expectValue("a = vector(3)[$1]; min(a) << max(a, 7)", "\"07\"");
    expectValue("a = vector(2)['b','a']; strmin(a)", "\"a\"");
    expectValue("a = vector(0)[1]; min(a, 1)", "1");
    expectValue("a = vector(2)[1,2]; b = vector(2)[a[$1]*2]; b", "{2,4}");
    expectValue("a = vector(2)[1,2]; exec('a[1]')", "2");
}

TEST(CalcVectors, Errors) {
    expectError("a = vector(2,2)[1,2,3,4]; a[1]",
                "ERROR-CALC006 missing function arguments : Function \"operator::[]\" takes at least 2 argument(s)");
    expectError("a = vector(2)[1,2]; a[1,1]",
                "ERROR-CALC007 too many function arguments : Function \"operator::[]\" takes at most 1 argument(s)");
    expectError("a = vector(3); choose(a, 1)",  // the vector leaves no argument
                "ERROR-CALC006 missing function arguments : Function \"choose\" takes at least 2 argument(s)");
    expectError("a = vector(2)[1,2]; a@size(1,2)",
                "ERROR-CALC007 too many function arguments : Function \"@size\" takes at most 1 argument(s)");
    expectError("vector(2,2)@shift(1)",
                "ERROR-CALC006 missing function arguments : Function \"@shift\" takes at least 2 argument(s)");
    expectError("a = vector(2)[1,2]; vector(2)@dims",
                "ERROR-CALC014 unsupported property or option : \"dims\" in statement "
                "(a = vector(2)[1,2]; vector(2) >>> @dims <<< )");
    expectError("a = vector(2)[$3]; a", "ERROR-CALC010 invalid symbol : \"$3\"");
    expectError("a = vector(2)[1,2]; b = a@next($0); b", "ERROR-CALC010 invalid symbol : \"$0\"");  // $n end with the definition
    expectError("a = vector(2)[1+]; a", "ERROR-CALC001 parse error : in statement ( >>> a = vector(2)[1+] <<< )");
    expectError("a = vector(1001, 1000)",
                "ERROR-CALC018 invalid operation : Operation \"vector\" is invalid or incompatible  "
                "(more than 1000000 elements)");
    expectError("vector(infinity)",
                "ERROR-CALC018 invalid operation : Operation \"vector\" is invalid or incompatible  "
                "(more than 1000000 elements)");
}
