// vexa::LookupSearch: the linear search of an array by value that alookup,
// aminlookup, amaxlookup and the methods lookup, minlookup and maxlookup
// share. Nothing is indexed or cached: each search starts at row 0.
//
// The rows come from a cursor (Rows below) that knows which rows count and
// what their values are; the search only compares. Numbers compare as
// doubles, where NaN equals nothing and is neither below nor above anything;
// texts compare by String::cmp.
//
// Modes: '=' the first row equal to x; '-' the row at or below x; '+' the
// row at or above x. The last two expect sorted rows and take the order
// from the first pair of rows that differ: ascending if the second value is
// above the first, descending otherwise; nothing checks the rest. A run of
// rows equal to the first value is the leading run: x equal to that value
// gives its end for '-' and its start for '+', whatever the order. For a
// value found further on, '-' in ascending and '+' in descending order walk
// the run of rows equal to x and answer its last row. The answer is -1 where
// no row lies on the side asked for.
//
// A cursor offers:
//   bool start()      to the first row that counts; false if there is none
//   bool next()       to the next row that counts; false at the end
//   long row()        the row it stands on
//   const V& value()  the value of that row, read at most once per row
//   long count()      the number of rows of the array
//   long notFound()   the answer of '=' when no row is equal
#pragma once

#include "base/String.h"

namespace vexa {

class ArrayReader;

class LookupSearch {
public:
    static bool equal(double a, double b) { return a == b; }
    static bool below(double a, double b) { return a < b; }
    static bool equal(const zun::String& a, const zun::String& b) { return a.cmp(b) == 0; }
    static bool below(const zun::String& a, const zun::String& b) { return a.cmp(b) < 0; }

    // Moves the reader one row on; false at the end of the array. An array
    // whose count is not known yet ends where the data ends, so an element
    // without size would never get there: that is an error.
    static bool step(ArrayReader& reader);

    template <class Rows, class V>
    static long find(Rows& rows, const V& x, char mode) {
        if (mode == '=') {
            for (bool more = rows.start(); more; more = rows.next())
                if (equal(rows.value(), x)) return rows.row();
            return rows.notFound();
        }
        bool atOrBelow = mode == '-';
        if (!rows.start()) return -1;
        const V first = rows.value();
        const long firstRow = rows.row();
        long runEnd = firstRow;
        bool more;
        while ((more = rows.next()) && equal(rows.value(), first)) runEnd = rows.row();
        if (equal(x, first)) return atOrBelow ? (more ? runEnd : rows.count() - 1) : firstRow;
        if (!more) {
            // every row holds the first value
            if (below(x, first)) return atOrBelow ? -1 : firstRow;
            return atOrBelow ? runEnd : -1;
        }
        const long secondRow = rows.row();
        long last = runEnd;   // the row before the one that stops the scan
        if (below(first, rows.value())) {
            // ascending
            if (below(x, first)) return atOrBelow ? -1 : firstRow;
            if (below(rows.value(), x)) {
                last = secondRow;
                for (;;) {
                    if (!rows.next()) return atOrBelow ? last : -1;
                    if (!below(rows.value(), x)) break;
                    last = rows.row();
                }
            }
            if (!equal(rows.value(), x)) return atOrBelow ? last : rows.row();
            return atOrBelow ? lastOfRun(rows, x) : rows.row();
        }
        // descending
        if (below(first, x)) return atOrBelow ? firstRow : -1;
        if (below(x, rows.value())) {
            last = secondRow;
            for (;;) {
                if (!rows.next()) return atOrBelow ? -1 : last;
                if (!below(x, rows.value())) break;
                last = rows.row();
            }
        }
        if (!equal(rows.value(), x)) return atOrBelow ? rows.row() : last;
        return atOrBelow ? rows.row() : lastOfRun(rows, x);
    }

private:
    // The cursor stands on a row equal to x: walks on over the rows that
    // count while they are equal to x and answers the last of them. The walk
    // ends at the first row that differs or at the end of the array.
    template <class Rows, class V>
    static long lastOfRun(Rows& rows, const V& x) {
        long at = rows.row();
        while (rows.next() && equal(rows.value(), x)) at = rows.row();
        return at;
    }
};

}  // namespace vexa
