#pragma once
#include "spreadsheet/formula/ReferenceSlot.h"
#include "spreadsheet/values/CellAddress.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace spreadsheet {

struct Formula;
struct Book;

/// Cells that are evaluated together: contiguous rows of one column with the same formula, or the
/// whole range of an array formula.
struct Run {
    int sheet = 1; ///< index from 1
    CellRange cells;
    std::uint32_t formula = 0;
    bool isArray = false;
    bool isCustom = false; ///< calls a function that the program registers
    bool isVolatile = false;
    bool readsUnlisted = false;
    bool changesByItself = false;
    std::int32_t component = -1;

    int column() const { return cells.left; }
};

/// Runs that read each other, or a single run. Components stand in the order of evaluation.
struct Component {
    /// How its cells are put in order.
    enum class Order : std::uint8_t {
        block,      ///< no run reads itself or a later one: any order, many rows at once
        ascending,  ///< row by row downward, the runs of a row in the order of `runs`
        descending, ///< row by row upward
        cells,      ///< runs cross each other: every cell for itself
    };
    std::vector<std::int32_t> runs;
    Order order = Order::block;
    int wave = 0;          ///< custom calls that must be answered one after the other before it
    bool isCustom = false; ///< one of its runs calls a function that the program registers
};

/// What one reference of a formula reads, over all cells of its run.
struct Reading {
    int firstSheet = 1; ///< index from 1
    int lastSheet = 1;
    CellRange cells; ///< hull over the run
    AxisPoint top, bottom;
    bool wholeColumns = false;
};

/// Who reads whom, by runs, and the order that follows from it.
class DependencyGraph {
public:
    /// Reads all formulas anew.
    void build(const Book& book);

    std::span<const Run> runs() const { return m_runs; }
    std::span<const Component> components() const { return m_components; }
    std::size_t bytes() const;

    /// The rows of a run that read any of the cells.
    struct Readers {
        std::int32_t run;
        int firstRow;
        int lastRow;
    };
    /// Reports every run with rows that read cells of the given column stretch; a run may come twice.
    void eachReader(int sheet, int column, int firstRow, int lastRow,
                    const std::function<void(const Readers&)>& report) const;
    /// Runs with cells in the given column stretch.
    void eachRun(int sheet, int column, int firstRow, int lastRow,
                 const std::function<void(std::int32_t)>& report) const;
    /// What the formula of a run reads, names included.
    std::span<const Reading> readings(std::int32_t run) const;

private:
    /// One reading in the index of a column (or of a sheet, if it is wide).
    struct Entry {
        std::int32_t firstRow;
        std::int32_t lastRow;
        std::int32_t maxLastRow; ///< of the entries up to this one in the sorted order's subtree
        std::int32_t run;
        std::int32_t reading;
    };
    struct ColumnIndex {
        std::vector<std::int32_t> runs; ///< ascending rows
        std::vector<Entry> entries;     ///< ascending firstRow, with subtree maxima
    };
    struct SheetIndex {
        std::vector<ColumnIndex> columns; ///< by column from 1; element 0 holds wide readings
    };

    friend class ComponentFinder;

    void collectRuns(const Book& book);
    static void addNameTraits(const Book& book, const Formula& formula, Run& run, int depth);
    void addRun(const Book& book, Run run);
    void collectReadings(const Book& book);
    void addReadings(const Book& book, const Run& run, const Formula& formula, int depth);
    static void widen(Reading& reading, const ReferenceSlot& like, CellAddress first, CellAddress last);
    void buildIndexes();
    void chooseOrders();
    Component::Order orderOf(const Component& component) const;
    bool sortRows(Component& component, int direction) const;
    void query(const std::vector<Entry>& entries, int firstRow, int lastRow,
               const std::function<void(const Entry&)>& report) const;
    static Readers readersOf(const Run& run, std::int32_t number, const Reading& reading, int firstRow,
                             int lastRow);

    std::vector<Run> m_runs;
    std::vector<Component> m_components;
    std::vector<Reading> m_readings;
    std::vector<std::int32_t> m_firstReading; ///< by run; one more at the end
    std::vector<SheetIndex> m_sheets;         ///< by sheet index from 1
};

} // namespace spreadsheet
