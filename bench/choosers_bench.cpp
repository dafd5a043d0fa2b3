// Times the choosers of basic data on 20,000 accounts: opening, and each key of a search.
#include "bench/bench_table.h"
#include "platform/basicdata/ChooserWindow.h"

#include <QApplication>
#include <QLineEdit>

using namespace selfreport;

namespace {

constexpr int accountCount = 20'000;

/// Three levels: 20 accounts, 1,000 below them, the rest below those.
std::vector<ChooserEntry> accounts()
{
    static const QStringList words{"银行", "存款", "应收", "账款", "管理",
                                   "费用", "长期", "股权", "投资", "准备"};
    std::vector<ChooserEntry> entries;
    for (int index = 0; index < accountCount; ++index) {
        const int parent = index < 20 ? -1 : index < 1020 ? (index - 20) % 20 : 20 + (index - 1020) % 1000;
        const QString code = parent < 0 ? QString::number(1001 + index)
                                        : entries[static_cast<std::size_t>(parent)].code +
                                              QString::number(index).rightJustified(5, '0');
        entries.push_back(
            {code, words[index % 10] + words[index / 10 % 10] + words[index / 100 % 10], "借", parent});
    }
    return entries;
}

} // namespace

int main(int count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    BenchTable table("choosers");
    std::unique_ptr<ChooserWindow> window;
    const auto frame = [] { QCoreApplication::processEvents(); };
    const auto open = [&] {
        window =
            std::make_unique<ChooserWindow>("科目", QStringList{"代码", "名称", "方向"}, accounts(), nullptr);
        window->show();
        frame();
    };
    table.row("20,000 accounts: open the window, first frame",
              bestSeconds(
                  3, [&] { window.reset(); }, open),
              0.1, "s");
    auto& box = *window->findChild<QLineEdit*>("txtSearch");
    for (const char* search : {"1001", "0", "yhck", "cqgqtz", "费用", "zzz"}) {
        double worst = 0;
        QString typed;
        for (const QChar key : QString::fromUtf8(search)) {
            typed += key;
            const auto type = [&] {
                box.setText(typed);
                frame();
            };
            worst = std::max(worst, bestSeconds(
                                        3, [&] { box.clear(), frame(); }, type));
        }
        table.row("search " + std::string(search) + ", the slowest key with its frame", worst * 1000, 20,
                  "ms");
    }
    return table.finish();
}
