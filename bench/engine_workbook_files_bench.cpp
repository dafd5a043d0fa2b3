// Times opening and saving of formatted .xls and .xlsx workbooks of 100,000 cells against their bounds.
#include "bench/bench_table.h"
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

constexpr int rows = 5000, columns = 20;

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
void fill(Workbook& workbook)
{
    std::mt19937_64 random(1); // NOLINT: the same amounts every time
    std::uniform_real_distribution<double> amounts(-1e6, 1e6);
    Sheet& sheet = workbook.sheet(1);
    for (int column = 1; column <= columns; ++column) {
        const std::uint32_t style = workbook.styles().intern(styleOf(column));
        for (int row = 1; row <= rows; ++row) {
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
            demand(sheet.fillDown({column, 1, column, rows}));
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

/// Megabytes that opening the file adds to a process of its own.
double openingMegabytes(const std::filesystem::path& file)
{
    int ends[2];
    if (pipe(ends) != 0)
        return 1e9;
    if (fork() == 0) {
        execl("/proc/self/exe", "open", file.c_str(), std::to_string(ends[1]).c_str(), nullptr);
        _exit(1);
    }
    wait(nullptr);
    long kilobytes = 0;
    const bool isTold = read(ends[0], &kilobytes, sizeof kilobytes) == sizeof kilobytes;
    close(ends[0]);
    close(ends[1]);
    return isTold ? static_cast<double>(kilobytes) / 1024 : 1e9;
}

int openAndTell(const char* file, const char* pipeEnd)
{
    const long before = peakKilobytes();
    Workbook workbook;
    loadWorkbook(workbook, file);
    const long added = peakKilobytes() - before;
    return write(std::atoi(pipeEnd), &added, sizeof added) == sizeof added ? 0 : 1;
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
    table.row(name + " of 100,000 formatted cells: open",
              bestSeconds(
                  runs, [] {},
                  [&] {
                      Workbook loaded;
                      loadWorkbook(loaded, file);
                  }),
              open, "s");
    const double megabytes = static_cast<double>(std::filesystem::file_size(file)) / (1 << 20);
    // On a machine with other work to do, the processor's own time says more.
    const std::clock_t start = std::clock();
    saveWorkbook(workbook, file, format);
    std::printf("   (%.2f MB; saving takes %.3f s of the processor)\n", megabytes,
                static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    if (name == ".xls")
        table.row(name + ": memory that opening adds", openingMegabytes(file), 4 * megabytes + 20, "MB");
}

} // namespace

int main(int count, char** arguments)
{
    if (count == 3)
        return openAndTell(arguments[1], arguments[2]);
    BenchTable table("workbook files of other programs");
    Workbook workbook;
    fill(workbook);
    const auto folder =
        std::filesystem::temp_directory_path() / ("workbook-bench-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    bench(table, workbook, folder / "a.xls", 0.10, 0.12);
    bench(table, workbook, folder / "a.xlsx", 0.25, 0.3);
    std::filesystem::remove_all(folder);
    return table.finish();
}
