#pragma once

#include <string>
#include <vector>

#include "core/uuid.h"
#include "presentation/screens/shared/screen.h"

class QBoxLayout;
class QTimer;
class QVBoxLayout;

namespace tallowcrest {

class Chat;
class ChatComposer;
class ChatPanel;
class ConversationView;
class ElidedLabel;
class PageScrollArea;
class PayloadPreview;
class SystemMonitor;
class WorkspaceBar;
struct WindowState;

/// The conversation with the advisor above the input, which stays in view. The facts and the first
/// questions stand beside it, or above it where the window has no room. Main thread.
class ChatPage final : public Screen {
    Q_OBJECT

public:
    explicit ChatPage(SystemMonitor& monitor, WindowState& state, QWidget* parent = nullptr);

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

protected:
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void layOut();
    QWidget* makeContent();
    void makePanel();
    void makeComposer();
    void makePayload();
    /// Puts the workspace bar and the panel where the window has room for them.
    void place();
    Chat& chat() const;
    void send();
    /// Scrolls to the end, and again whenever it moves.
    void followEnd();
    void followPayload();
    void showMessages();
    void showThinking();
    bool isAtEnd() const;
    /// Keeps what is read where it is when messages arrive or are laid out.
    void keepPlace();

    SystemMonitor& monitor_;
    WindowState& state_;
    WorkspaceBar* bar_ = nullptr;
    ChatPanel* panel_ = nullptr;
    ChatComposer* composer_ = nullptr;
    PageScrollArea* area_ = nullptr;
    ElidedLabel* lead_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    PayloadPreview* payload_ = nullptr;
    ConversationView* conversation_ = nullptr;
    ElidedLabel* thinking_ = nullptr;
    QTimer* seconds_ = nullptr;       ///< runs while an answer is awaited in view
    QTimer* payloadDelay_ = nullptr;  ///< runs while a question is being typed
    std::string payloadInput_;        ///< the question at the last refresh
    QVBoxLayout* above_ = nullptr;    ///< room for the bar above what is scrolled
    QVBoxLayout* beside_ = nullptr;   ///< and for the panel beside it
    QVBoxLayout* within_ = nullptr;   ///< and for both in it
    std::vector<UUID> shown_;         ///< the messages in the conversation
    bool followsEnd_ = false;         ///< a new message scrolls the end into view
    bool isReading_ = false;          ///< shown since the last refresh, so that arrivals are news
};

}  // namespace tallowcrest
