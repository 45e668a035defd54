// skelvor-calc end to end: the stateful and control functions, along the rows
// of -n where they need an iterator.
#include "calc_expect.h"

using namespace calce2e;

TEST(CalcRecurrences, SeedBeforeOrAtTheFirstRow) {
    expectRows(4, "recurse(self+1, 10)", "11\n12\n13\n14\n");
    expectRows(3, "recurse0(self+1, 10)", "10\n11\n12\n");
    expectRows(3, "recurse0(self+1)", "0\n1\n2\n");
    expectRows(4, "recurse(self*2 + iter, 1)", "2\n5\n12\n27\n");
    expectRows(3, "recurse(self << 'x', '')", "\"x\"\n\"xx\"\n\"xxx\"\n");
    expectRows(3, "recurse0(self << iter, 's')", "\"s\"\n\"s1\"\n\"s12\"\n");
    expectRows(5, "recurse(recurse(self+1) + self)", "1\n3\n6\n10\n15\n");  // each self its own
    expectRows(4, "x = recurse(self+1); recurse(self + x)", "1\n3\n6\n10\n");
}

TEST(CalcRecurrences, CatchingUpAfterAJump) {
    // The recurrence is compiled at the third row only: it walks the rows it missed.
    expectRows(5, "iter < 2 ? 0 : exec('recurse(self+1)')", "0\n0\n3\n4\n5\n");
    expectRows(4, "iter < 2 ? 0 : exec('recurse0(self+1, 10)')", "0\n0\n12\n13\n");
    // The iterator stands at the row again afterwards.
    expectRows(4, "iter < 2 ? 0 : exec('recurse(self+1)') * 100 + iter", "0\n0\n302\n403\n");
    expectRows(4, "iter < 2 ? 0 : exec('b = iter*2; recurse(self + b)')", "0\n0\n6\n12\n");
    // A variable read again at the row before starts over from the seed.
    expectRows(4, "a = recurse(self+1); a*10 + lastof(a)", "10\n21\n32\n43\n");
}

TEST(CalcRecurrences, PreviousValue) {
    expectRows(4, "lastof(iter*10, 7)", "7\n0\n10\n20\n");
    expectRows(3, "lastof(iter << 'a')", "\"\"\n\"0a\"\n\"1a\"\n");
    expectRows(4, "lastof(lastof(iter, -1), -2)", "-2\n-1\n0\n1\n");
    expectRows(5, "recurse(self + lastof(iter))", "0\n0\n1\n3\n6\n");
    expectRows(5, "iter < 3 ? 0 : exec('lastof(iter*10)')", "0\n0\n0\n20\n30\n");
    expectRows(3, "recurse(self + 0.5) << '|' << lastof(iter << '1') * 2", "\"0.5|\"\n\"1|2\"\n\"1.5|22\"\n");
}

TEST(CalcMemory, KeepOutlivesTheResetOfEachRow) {
    expectRows(3, "keep(iter)", "0\n0\n0\n");
    expectRows(3, "a = keep(iter); a + iter", "0\n1\n2\n");
    expectRows(3, "keep(iter << 'x')", "\"0x\"\n\"0x\"\n\"0x\"\n");
    expectRows(3, "keepmin(10 - iter)", "10\n10\n10\n");
    expectRows(3, "keepmax('a' << iter)", "\"a0\"\n\"a0\"\n\"a0\"\n");
    // get is sampled by sort only: outside it stays empty.
    expectRows(2, "get(iter)", "nan\nnan\n");
    expectRows(2, "isnullstr(getmax('a' << iter))", "1\n1\n");
    expectRows(2, "a = vector(2)[1,2]; k = keep(a); k[1]", "2\n2\n");
}

TEST(CalcSort, OrderTiesAndDirections) {
    expectRows(4, "sort(-iter)", "3\n2\n1\n0\n");
    expectRows(4, "sort(iter % 2)", "0\n2\n1\n3\n");                  // ties by element number
    expectRows(4, "sort(iter % 2)@reverse", "1\n3\n0\n2\n");          // not the element number
    expectRows(4, "sort(iter % 2)@reverse1", "1\n3\n0\n2\n");
    expectRows(4, "sort(iter % 2)@reverse0", "2\n0\n3\n1\n");         // the last key: element number
    expectRows(4, "sort(iter % 2, -iter)", "2\n0\n3\n1\n");
    expectRows(4, "sort(iter % 2, -iter)@reverse", "3\n1\n2\n0\n");
    expectRows(4, "sort(iter % 2, iter)@reverse(0, 1)", "2\n0\n3\n1\n");
    expectRows(4, "sort(iter % 2)@reverse(1, 1)", "3\n1\n2\n0\n");
    expectRows(4, "sort(iter % 2)@reverse(0, nan)", "2\n0\n3\n1\n");  // NaN is not 0
    expectRows(4, "sort(iter % 2 ? 'b' : 'a')", "0\n2\n1\n3\n");
    expectRows(5, "sort(choose(iter, 'pear', 'Apple', 'apple', '', 'pea'))", "2\n0\n1\n3\n4\n");  // by bytes
    expectRows(4, "x = sort(-iter); x + 1", "4\n3\n2\n1\n");
}

TEST(CalcSort, MissingValuesSortAboveTheOthers) {
    expectRows(4, "sort(iter == 1 ? nan : iter % 3)", "0\n3\n2\n1\n");
    expectRows(4, "sort(iter == 1 ? nan : -iter)@reverse", "1\n0\n2\n3\n");
    expectRows(4, "sort(iter % 2 ? null : 'a')", "0\n2\n1\n3\n");
    expectRows(4, "sort(iter % 2 ? null : '')", "0\n2\n1\n3\n");
    expectRows(4, "sort(iter % 2 ? null : 'a')@reverse", "1\n3\n0\n2\n");
}

TEST(CalcSort, Selection) {
    expectRows(4, "sort(iter % 2)@select(iter != 1)", "0\n2\n3\n-1\n");
    expectRows(4, "sort(3 - iter)@select(iter > 0)@reverse", "1\n2\n3\n-1\n");
    expectRows(2, "sort(iter)@select(0)", "-1\n-1\n");
    expectRows(0, "sort(iter)", "");
}

TEST(CalcSort, SamplesTheMemoryCellsOfEachElement) {
    expectRows(4, "sort(keep(iter, iter > 1))", "0\n1\n2\n3\n");   // holds 1 from the third element on
    expectRows(4, "sort(get(iter, iter > 1))", "2\n3\n0\n1\n");    // empty before the third element
    expectRows(4, "sort(keep(3 - iter))", "3\n2\n1\n0\n");
    expectRows(4, "sort(keepmax(3 - iter))", "0\n1\n2\n3\n");
    expectRows(4, "sort(getmin(-iter))", "3\n2\n1\n0\n");
    expectRows(4, "sort(lastof(-iter))", "3\n2\n0\n1\n");
    expectRows(4, "x = 3 - iter; sort(x)", "3\n2\n1\n0\n");
}

TEST(CalcControl, ConstSyncChooseConditional) {
    expectRows(3, "const(iter)", "0\n0\n0\n");
    expectRows(3, "const(iter) + iter", "0\n1\n2\n");
    expectRows(2, "const('a' << iter) << iter", "\"a00\"\n\"a01\"\n");
    expectRows(3, "sync(iter, iter * 2)", "0\n2\n4\n");
    expectValue("choose(-1,9,1,2) << choose(1,9,1,2) << choose(2,9,1,2) << choose(nan,9,1)", "\"9299\"");
    expectValue("choose(1.9,9,1,2) << choose(1.0e30,9,1,2) << choose(4294967297,9,1,2)", "\"299\"");
    expectRows(3, "choose(iter, 9, 'a', 'b')", "\"a\"\n\"b\"\n9\n");
    expectValue("choose(1, 9, vector(2)[5,6])", "6");
    expectValue("nan ? 1 : 2", "1");
    expectValue("0 ? 1 : 's'", "nan");  // folded by the type of the first branch
    expectRows(3, "iter % 2 ? 'odd' : 'even'", "\"even\"\n\"odd\"\n\"even\"\n");
}

TEST(CalcControl, DefinedOrNot) {
    expectValue("ifndef(nan,3) << ifdef(1,3) << ifndef('a','x') << ifndef(null,'x')", "\"33ax\"");
    expectValue("ifdef(nan,3)", "nan");
    expectValue("ifndef(null, 'dflt')", "\"dflt\"");
    // empty is defined
    expectValue("isnullstr(ifdef(null,'x')) << ifdef('','x') << isnullstr(ifndef('','y'))", "\"1x0\"");
}

TEST(CalcControl, OutsideSymbols) {
    expectOut({"-D", "k=7", "option('#k', 5)"}, "\"7\"\n");
    expectOut({"-D", "k=7", "option('#nope', 5) << option('pi', 'd')"}, "\"5d\"\n");  // builtins are not outside
    expectOut({"-n", "2", "-D", "k=7", "option('#' << iter, 5)"}, "5\n5\n");
    expectOut({"-D", "k=7", "symref('#k') + 1"}, "8\n");
    expectOut({"-D", "k=7", "symref('#' << 'k')"}, "\"7\"\n");
    expectOut({"-D", "k=7", "n = '#k'; symref(n) + 1"}, "8\n");
    expectOut({"-D", "k=7", "isnullstr(symref('#nope'))"}, "1\n");
    expectError("symref()", "ERROR-CALC008 function unknown : \"symref\"");
}

TEST(CalcControl, ExecCompilesAtTheFirstRead) {
    expectValue("a = 2; exec('a * 3')", "6");
    expectOut({"-D", "k=7", "exec('#k')"}, "\"7\"\n");
    expectValue("exec('vector(2)[1,2]')", "{1,2}");
    expectValue("exec('')", "nan");
    // Its own variables follow each row, wherever the exec stands.
    expectRows(3, "exec('b = iter; b')", "0\n1\n2\n");
    expectRows(3, "1 + exec('b = iter; b')", "1\n2\n3\n");
    expectRows(4, "recurse(self + exec('b = iter; b'))", "0\n1\n3\n6\n");
    expectRows(3, "lastof(exec('b = iter * 2; b'))", "0\n0\n2\n");
    expectRows(3, "exec(iter)", "0\n0\n0\n");  // the text is taken once, when the statement compiles
    expectError("exec('1+')", "ERROR-CALC001 parse error : in statement ( >>> 1+ <<< )");
    // Where the type of the exec chooses the class, it compiles while the statement does.
    expectErr({"-n", "2", "lastof(exec('x'))"}, "ERROR-CALC010 invalid symbol : \"x\"\n");
    expectError("ifdef(1, exec('x'))", "ERROR-CALC010 invalid symbol : \"x\"");
    expectError("exec('1', 2, 3)", "ERROR-CALC007 too many function arguments : Function \"exec\" takes at most 2 argument(s)");
}
