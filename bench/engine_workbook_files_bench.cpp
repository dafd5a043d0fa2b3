// Times opening and saving of formatted .xls and .xlsx workbooks of 100,000 cells against their bounds, of
// .xlsx also of 960,000, and beside another library that writes the same cells.
#include "bench/bench_table.h"
#ifdef HAS_XLSXWRITER
#include "bench/xlsx_partner.h"
#endif
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cmath>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

using namespace spreadsheet;

namespace {

constexpr int rows = 5000, columns = 20, manyRows = 48'000;

CellStyle styleOf(int column)
{
    CellStyle style;
    style.type = column % 3 == 0 ? CellType::number : CellType::edit;
    style.font = {Text(column % 2 ? "宋体" : "Arial"), 10, column % 4 == 0, false, false, false};
    style.background = column % 5 == 0 ? 0xFFFFCCu : automaticColour;
    style.left = style.bottom = {LineStyle::fineSolid, 0};
    if (column % 3 == 1)
        style.numberFormat = Text("#,##0.00");
    return style;
}

/// Texts, amounts and formulas as in a list of balances.
void fill(Workbook& workbook, int rowCount)
{
    std::mt19937_64 random(1); // NOLINT: the same amounts every time
    std::uniform_real_distribution<double> amounts(-1e6, 1e6);
    Sheet& sheet = workbook.sheet(1);
    for (int column = 1; column <= columns; ++column) {
        const std::uint32_t style = workbook.styles().intern(styleOf(column));
        for (int row = 1; row <= rowCount; ++row) {
            if (column % 5 == 1)
                sheet.setText({column, row}, "科目" + std::to_string(row * column % 1500));
            else if (column % 5 != 0)
                sheet.setNumber({column, row}, std::round(amounts(random) * 100) / 100);
            const Column::Place place = sheet.loadColumn(column).writable(row);
            place.block.setStyle(place.index, style);
        }
        if (column % 5 == 0) {
            demand(sheet.setFormula({column, 1}, "SUM(" + columnName(column - 3) +
                                                     "1:" + columnName(column - 1) + "1)*1.13"));
            demand(sheet.fillDown({column, 1, column, rowCount}));
        }
    }
    workbook.recalculate();
}

/// Of this program alone: the counters of getrusage are handed on when a process becomes another program.
long peakKilobytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:"))
            return std::atol(line.c_str() + 6);
    }
    return 0;
}

long residentKilobytes()
{
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

/// Megabytes that a program of its own adds by doing something with the file.
double addedMegabytes(const char* what, const std::filesystem::path& file)
{
    int ends[2];
    if (pipe(ends) != 0)
        return 1e9;
    if (fork() == 0) {
        execl("/proc/self/exe", what, file.c_str(), std::to_string(ends[1]).c_str(), nullptr);
        _exit(1);
    }
    wait(nullptr);
    long kilobytes = 0;
    const bool isTold = read(ends[0], &kilobytes, sizeof kilobytes) == sizeof kilobytes;
    close(ends[0]);
    close(ends[1]);
    return isTold ? static_cast<double>(kilobytes) / 1024 : 1e9;
}

int tell(long added, const char* pipeEnd)
{
    return write(std::atoi(pipeEnd), &added, sizeof added) == sizeof added ? 0 : 1;
}

int openAndTell(const char* file, const char* pipeEnd)
{
    const long before = peakKilobytes();
    Workbook workbook;
    loadWorkbook(workbook, file);
    workbook.recalculate();
    return tell(peakKilobytes() - before, pipeEnd);
}

/// Above the workbook.
int saveAndTell(const char* file, const char* pipeEnd)
{
    Workbook workbook;
    fill(workbook, manyRows);
    std::ofstream("/proc/self/clear_refs") << 5; // the peak begins anew
    const long before = residentKilobytes();
    saveWorkbook(workbook, file, *fileFormatOfName(file));
    return tell(peakKilobytes() - before, pipeEnd);
}

double openSeconds(int runs, const std::filesystem::path& file)
{
    return bestSeconds(
        runs, [] {},
        [&] {
            Workbook loaded;
            loadWorkbook(loaded, file);
        });
}

/// On a machine with other work to do, the processor's own time says more.
double processorSeconds(const std::function<void()>& work)
{
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void bench(BenchTable& table, const Workbook& workbook, const std::filesystem::path& file, double save,
           double open)
{
    const FileFormat& format = *fileFormatOfName(file);
    const std::string name = file.extension().string();
    constexpr int runs = 7;
    table.row(name + " of 100,000 formatted cells: save",
              bestSeconds(
                  runs, [] {}, [&] { saveWorkbook(workbook, file, format); }),
              save, "s");
    table.row(name + " of 100,000 formatted cells: open", openSeconds(runs, file), open, "s");
    const double megabytes = static_cast<double>(std::filesystem::file_size(file)) / (1 << 20);
    const double saving = processorSeconds([&] { saveWorkbook(workbook, file, format); });
    const double opening = processorSeconds([&] { openSeconds(1, file); });
    std::printf("   (%.2f MB; saving takes %.3f s of the processor, opening %.3f s)\n", megabytes, saving,
                opening);
    if (name == ".xls")
        table.row(name + ": memory that opening adds", addedMegabytes("open", file), 4 * megabytes + 20,
                  "MB");
}

void benchLarge(BenchTable& table, const std::filesystem::path& file)
{
    table.row(".xlsx of 960,000 formatted cells: memory that saving adds", addedMegabytes("save", file), 16,
              "MB");
    table.row(".xlsx of 960,000 formatted cells: open", openSeconds(3, file), 0.5, "s");
    std::printf("   (%.3f s of the processor)\n", processorSeconds([&] { openSeconds(1, file); }));
}

/// Sums over rectangles, of which no two are alike.
void fillRectangles(Sheet& sheet)
{
    constexpr int wide = 50, deep = 1000, formulas = 5000;
    constexpr const char* functions[]{"SUM", "AVERAGE", "COUNT"};
    std::mt19937 random(1); // NOLINT: the same every time
    const auto stretch = [&random](int most) {
        const int a = static_cast<int>(random() % most) + 1, b = static_cast<int>(random() % most) + 1;
        return std::pair(std::min(a, b), std::max(a, b));
    };
    for (int column = 1; column <= wide; ++column)
        for (int row = 1; row <= deep; ++row)
            sheet.setNumber({column, row}, static_cast<double>(random() % 100'000) / 100);
    for (int i = 0; i < formulas; ++i) {
        const auto [left, right] = stretch(wide);
        const auto [top, bottom] = stretch(deep);
        demand(sheet.setFormula({wide + 2 + i % 5, i / 5 + 1}, std::string(functions[i % 3]) + "(" +
                                                                   cellName({left, top}) + ":" +
                                                                   cellName({right, bottom}) + ")"));
    }
}

void fillChain(Sheet& sheet)
{
    sheet.setNumber({1, 1}, 1);
    demand(sheet.setFormula({1, 2}, "A1+1"));
    demand(sheet.fillDown({1, 2, 1, 100'000}));
}

void benchFormulas(BenchTable& table, const std::filesystem::path& file)
{
    static constexpr struct {
        const char* what;
        void (*fill)(Sheet&);
        double most;
    } shapes[]{{".xlsx of 5,000 sums over 50,000 numbers: memory that opening adds", fillRectangles, 9},
               {".xlsx of a chain of 100,000 formulas: memory that opening adds", fillChain, 16}};
    for (const auto& shape : shapes) {
        Workbook workbook;
        shape.fill(workbook.sheet(1));
        workbook.recalculate();
        saveWorkbook(workbook, file, *fileFormatOfName(file));
        table.row(shape.what, addedMegabytes("open", file), shape.most, "MB");
    }
}

#ifdef HAS_XLSXWRITER
void benchBesideAnother(BenchTable& table, const Workbook& workbook, const std::filesystem::path& file)
{
    constexpr int runs = 5;
    const std::filesystem::path other = file.parent_path() / "other.xlsx";
    const double theirs = bestSeconds(
        runs, [] {}, [&] { writeByPartner(workbook, other); });
    const double ours = bestSeconds(
        runs, [] {}, [&] { saveWorkbook(workbook, file, *fileFormatOfName(file)); });
    table.row(".xlsx of 100,000 formatted cells: save, beside libxlsxwriter", ours / theirs, 0.5, "x");
    std::printf("   (theirs %.3f s, %.2f MB)\n", theirs,
                static_cast<double>(std::filesystem::file_size(other)) / (1 << 20));
}
#endif

} // namespace

int main(int count, char** arguments)
{
    if (count == 3)
        return std::string_view(arguments[0]) == "save" ? saveAndTell(arguments[1], arguments[2])
                                                        : openAndTell(arguments[1], arguments[2]);
    BenchTable table("workbook files of other programs");
    Workbook workbook;
    fill(workbook, rows);
    const auto folder =
        std::filesystem::temp_directory_path() / ("workbook-bench-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    bench(table, workbook, folder / "a.xls", 0.10, 0.12);
    bench(table, workbook, folder / "a.xlsx", 0.25, 0.04);
#ifdef HAS_XLSXWRITER
    benchBesideAnother(table, workbook, folder / "a.xlsx");
#endif
    benchLarge(table, folder / "b.xlsx");
    benchFormulas(table, folder / "c.xlsx");
    std::filesystem::remove_all(folder);
    return table.finish();
}
