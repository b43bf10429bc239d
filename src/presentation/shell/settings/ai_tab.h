#pragma once

#include <string_view>

#include <QString>

#include "presentation/shell/settings/settings_tab.h"
#include "presentation/words/automation_lines.h"

class QPushButton;

namespace tallowcrest {

class AutomationToggle;
class AutonomyPicker;
class DangerButton;
class ElidedLabel;
class RefusalLine;
class SecretField;
class StoredField;

/// What the tab shows of the advisor's provider and settings.
struct AITabState {
    bool isKeySaved = false;
    bool isKeyBusy = false;
    int keyLength = 0;  ///< the characters of the key that is typed and not saved
    QString model;
    QString endpoint;
    bool isRedacted = true;
    bool requiresPreview = true;
    AIAutonomyMode mode = AIAutonomyMode::apprentice;
    bool isStopEngaged = false;
};

/// The settings of the advisor. Main thread.
class AITab final : public SettingsTab {
    Q_OBJECT

public:
    /// Takes ownership of the switch of the safe actions.
    explicit AITab(QWidget* safeActions, QWidget* parent = nullptr);

    /// A value that is being typed or was refused stays.
    void show(const AITabState& state);

    /// Shows why the key was refused, not saved or not removed; an empty text removes that.
    void showKeyRefusal(const QString& words);

    StoredField& model() { return *model_; }
    StoredField& endpoint() { return *endpoint_; }
    AutonomyPicker& picker() { return *picker_; }

signals:
    /// The owner put `inserted`, which is UTF-8 and overwritten afterwards, in place of `removed`
    /// characters of the key from the one at `first` on.
    void keyEdited(int first, int removed, std::string_view inserted);
    /// The owner asked to save the key that was typed.
    void keySaveWanted();
    /// The owner pressed "Remove Key".
    void keyRemovalWanted();
    // The owner asked to turn a switch. It stays as it is until `show`.
    void redactionWanted(bool on);
    void previewWanted(bool on);
    /// The owner pressed "Copy AI Payload Preview".
    void payloadCopyWanted();

private:
    QWidget* makeKey(QWidget* card);
    QWidget* makeIntelligence();
    QWidget* makePayload(QWidget* safeActions);
    QWidget* makeAutonomy();
    void saveKey();
    void showKey(const AITabState& state);

    ElidedLabel* keyState_ = nullptr;
    DangerButton* remove_ = nullptr;
    SecretField* key_ = nullptr;
    QPushButton* save_ = nullptr;
    RefusalLine* keyRefusal_ = nullptr;
    StoredField* model_ = nullptr;
    StoredField* endpoint_ = nullptr;
    AutomationToggle* redaction_ = nullptr;
    AutomationToggle* preview_ = nullptr;
    AutonomyPicker* picker_ = nullptr;
};

}  // namespace tallowcrest
