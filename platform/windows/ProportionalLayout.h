#pragma once
#include <QLayout>

#include <memory>
#include <vector>

namespace selfreport {

/// Keeps the places and sizes of a window's controls in proportion to the window. Places are given on a
/// drawing board in twips (1/1440 inch), left and top from 0. The window opens at the board's size, larger
/// where a control needs more for its text.
class ProportionalLayout : public QLayout {
public:
    ProportionalLayout(QWidget* parent, QSize boardTwips);
    ~ProportionalLayout() override;

    void place(QWidget* control, const QRect& twips);

    void addItem(QLayoutItem* item) override; ///< gets no place: use place()
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& area) override;
    int count() const override { return static_cast<int>(m_placed.size()); }
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;

private:
    struct Placed {
        std::unique_ptr<QLayoutItem> item;
        QRect twips;
    };
    QSize boardScaled(double least) const;

    QSize m_board; // twips
    std::vector<Placed> m_placed;
};

} // namespace selfreport
