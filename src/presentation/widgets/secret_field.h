#pragma once

#include <functional>
#include <string_view>

#include <QLineEdit>

namespace tallowcrest {

/// A field for a secret. What is typed is drawn as dots, cannot be copied, and is not offered to
/// input methods for completion. Assistive technology can write into it as into other fields, but
/// never learns what it has. The text is overwritten when it is removed and when the field is
/// destroyed. Main thread.
class SecretField final : public QLineEdit {
    Q_OBJECT

public:
    explicit SecretField(const QString& identifier, QWidget* parent = nullptr);
    ~SecretField() override;

    /// Calls `use` with the text in UTF-8, which is overwritten afterwards.
    void withText(const std::function<void(std::string_view)>& use) const;

    /// Removes the text.
    void wipe();
};

}  // namespace tallowcrest
