#pragma once
#include <gtest/gtest.h>
#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <utility>
#include <vector>

namespace spreadsheet {

inline std::pair<int, QString> run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(60'000))
        return {-1, program + ": " + process.errorString()};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

/// Pages of a PDF as grey pictures of 60 dots per inch.
inline std::vector<QImage> picturesOf(const QTemporaryDir& folder, const QString& pdf)
{
    run("pdftoppm", {"-r", "60", "-gray", folder.filePath(pdf), folder.filePath("page-" + pdf)});
    std::vector<QImage> pictures;
    for (const QString& name : QDir(folder.path()).entryList({"page-" + pdf + "*"}, QDir::Files, QDir::Name))
        pictures.emplace_back(folder.filePath(name));
    return pictures;
}

/// Two programs' drawings of the same pages: the edges of letters may differ.
inline void expectAlike(const std::vector<QImage>& ours, const std::vector<QImage>& theirs, int leastInk)
{
    ASSERT_EQ(ours.size(), theirs.size());
    ASSERT_FALSE(ours.empty());
    for (std::size_t page = 0; page < ours.size(); ++page) {
        ASSERT_EQ(ours[page].size(), theirs[page].size());
        int inked = 0, other = 0;
        for (int y = 0; y < ours[page].height(); ++y)
            for (int x = 0; x < ours[page].width(); ++x) {
                const int a = qGray(ours[page].pixel(x, y)), b = qGray(theirs[page].pixel(x, y));
                inked += b < 128;
                other += std::abs(a - b) > 80;
            }
        EXPECT_GT(inked, leastInk);
        EXPECT_LT(other, inked / 50) << "page " << page + 1;
    }
}

} // namespace spreadsheet
