#pragma once

#include <map>

#include <QString>
#include <QTextEdit>

namespace tallowcrest {

/// A long plain text, which can be selected and copied by pointer and keyboard. It wraps, also
/// within a word that is wider than its room, and is as high as its text, so that what is around it
/// scrolls. To assistive technology it is one static text, which it reads and selects but cannot
/// change. Main thread.
class SelectableText final : public QTextEdit {
    Q_OBJECT

public:
    enum class Look {
        framed,  ///< with a caret: the arrow keys select
        bare,    ///< without a margin; the arrow keys are left to what is around it
    };

    explicit SelectableText(const QString& identifier, QWidget* parent = nullptr,
                            Look look = Look::framed);

    /// Plain text: markup is shown as it is, and line feeds end lines. The same text changes
    /// nothing, so that a selection stays.
    void showText(const QString& text);
    /// Whether it has the focus or a selection, so that another text would disturb who reads or
    /// copies it.
    bool isBeingRead() const;
    /// What assistive technology calls it, in place of the text itself, which it then reads as any
    /// other text.
    void setShortName(const QString& name);
    const QString& shownText() const { return text_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void changeEvent(QEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void prepare(QTextDocument& document) const;
    int margin() const;

    Look look_;
    QString text_;
    QString shortName_;
    mutable std::map<int, int> heights_;  ///< by width, of the present text and font
};

}  // namespace tallowcrest
