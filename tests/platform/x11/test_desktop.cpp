#include "tests/platform/x11/test_desktop.h"

#include <cstdlib>
#include <stdexcept>

#include "platform/x11/display_connection.h"
#include "tests/support/eventually.h"

namespace tallowcrest {
namespace {

std::vector<std::string> serverCommand(const std::vector<std::string>& arguments) {
    // Without -noreset the server resets, and refuses clients, when its first client disconnects.
    std::vector<std::string> command{"Xvfb",       "-displayfd", "1",   "-screen", "0",
                                     "640x480x24", "-nolisten",  "tcp", "-noreset"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

std::vector<std::string> managerCommand(const std::filesystem::path& home) {
    // Keeps the user's settings out of the tests.
    return {"env", "HOME=" + home.string(), "XDG_CONFIG_HOME=" + home.string(), "openbox",
            "--sm-disable"};
}

}  // namespace

PrivateDisplay::PrivateDisplay(const std::vector<std::string>& arguments)
    : server_(serverCommand(arguments)) {
    const std::string number = server_.line();
    if (number.empty()) {
        throw std::runtime_error("the display did not start");
    }
    ::setenv("DISPLAY", (":" + number).c_str(), 1);
}

PrivateDisplay::~PrivateDisplay() {
    ::unsetenv("DISPLAY");
}

TestDesktop::TestDesktop() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_.get()) != 0) {
        throw std::runtime_error("no connection to the display");
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
}

xcb_atom_t TestDesktop::atom(const std::string& name) const {
    xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(
        connection_.get(),
        xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()),
                        name.c_str()),
        nullptr);
    if (reply == nullptr) {
        throw std::runtime_error("no atom " + name);
    }
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
}

xcb_window_t TestDesktop::makeWindow() const {
    const xcb_window_t window = xcb_generate_id(connection_.get());
    xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window, root_, 0, 0, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    sync();
    return window;
}

void TestDesktop::destroy(xcb_window_t window) const {
    xcb_destroy_window(connection_.get(), window);
    sync();
}

std::uint16_t TestDesktop::beginToDestroy(xcb_window_t window) const {
    const auto number =
        static_cast<std::uint16_t>(xcb_destroy_window(connection_.get(), window).sequence);
    xcb_flush(connection_.get());
    return number;
}

std::uint16_t TestDesktop::beginToSetNumber(xcb_window_t window, xcb_atom_t property,
                                            std::uint32_t number) const {
    const auto cookie = xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window,
                                            property, XCB_ATOM_CARDINAL, 32, 1, &number);
    xcb_flush(connection_.get());
    return static_cast<std::uint16_t>(cookie.sequence);
}

void TestDesktop::setNumbers(xcb_window_t window, const std::string& property,
                             const std::string& type,
                             const std::vector<std::uint32_t>& numbers) const {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, atom(property),
                        atom(type), 32, static_cast<std::uint32_t>(numbers.size()), numbers.data());
    sync();
}

void TestDesktop::setAtoms(xcb_window_t window, const std::string& property,
                           const std::vector<std::string>& names) const {
    std::vector<std::uint32_t> atoms;
    for (const std::string& name : names) {
        atoms.push_back(atom(name));
    }
    setNumbers(window, property, "ATOM", atoms);
}

void TestDesktop::setShorts(xcb_window_t window, const std::string& property,
                            const std::string& type,
                            const std::vector<std::uint16_t>& numbers) const {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, atom(property),
                        atom(type), 16, static_cast<std::uint32_t>(numbers.size()), numbers.data());
    sync();
}

void TestDesktop::setText(xcb_window_t window, const std::string& property, const std::string& type,
                          const std::string& text) const {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, atom(property),
                        atom(type), 8, static_cast<std::uint32_t>(text.size()), text.data());
    sync();
}

void TestDesktop::remove(xcb_window_t window, const std::string& property) const {
    xcb_delete_property(connection_.get(), window, atom(property));
    sync();
}

std::vector<std::uint32_t> TestDesktop::numbers(xcb_window_t window,
                                                const std::string& property) const {
    xcb_get_property_reply_t* const reply =
        xcb_get_property_reply(connection_.get(),
                               xcb_get_property(connection_.get(), 0, window, atom(property),
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, 1U << 20U),
                               nullptr);
    std::vector<std::uint32_t> result;
    if (reply != nullptr && reply->format == 32) {
        const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
        result.assign(first, first + reply->value_len);
    }
    std::free(reply);
    return result;
}

void TestDesktop::sendPlainMessage(xcb_window_t window, const std::string& type) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    xcb_send_event(connection_.get(), 0, window, 0, reinterpret_cast<const char*>(&message));
    sync();
}

void TestDesktop::askManagerToClose(xcb_window_t window) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("_NET_CLOSE_WINDOW");
    message.data.data32[1] = 2;
    xcb_send_event(connection_.get(), 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    sync();
}

void TestDesktop::becomeManager() {
    const std::uint32_t redirect = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(connection_.get(), root_, XCB_CW_EVENT_MASK, &redirect);
    managerWindow_ = makeWindow();
    setNumbers(managerWindow_, "_NET_SUPPORTING_WM_CHECK", "WINDOW", {managerWindow_});
    setNumbers(root_, "_NET_SUPPORTING_WM_CHECK", "WINDOW", {managerWindow_});
    setAtoms(root_, "_NET_SUPPORTED", {"_NET_CLIENT_LIST", "_NET_CLOSE_WINDOW", "_NET_WM_PID"});
    list({});
}

xcb_window_t TestDesktop::makeWindowOf(std::uint32_t pid) const {
    const xcb_window_t window = makeWindow();
    setNumbers(window, "_NET_WM_PID", "CARDINAL", {pid});
    setText(window, "WM_CLIENT_MACHINE", "STRING", hostName());
    setAtoms(window, "WM_PROTOCOLS", {"WM_TAKE_FOCUS", "WM_DELETE_WINDOW"});
    return window;
}

void TestDesktop::list(const std::vector<xcb_window_t>& windows) const {
    setNumbers(root_, "_NET_CLIENT_LIST", "WINDOW", windows);
}

std::vector<xcb_client_message_event_t> TestDesktop::messages() const {
    sync();
    std::vector<xcb_client_message_event_t> result;
    while (xcb_generic_event_t* const event = xcb_poll_for_event(connection_.get())) {
        if ((event->response_type & 0x7FU) == XCB_CLIENT_MESSAGE) {
            result.push_back(*reinterpret_cast<const xcb_client_message_event_t*>(event));
        }
        std::free(event);
    }
    return result;
}

void TestDesktop::sync() const {
    std::free(xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()),
                                        nullptr));
}

RealManager::RealManager(const TestDesktop& desktop) : program_(managerCommand(home_.path())) {
    const bool isReady = eventually([&] {
        const auto check = desktop.numbers(desktop.root(), "_NET_SUPPORTING_WM_CHECK");
        return !check.empty() && !desktop.numbers(desktop.root(), "_NET_SUPPORTED").empty() &&
               desktop.numbers(check[0], "_NET_SUPPORTING_WM_CHECK") == check;
    });
    if (!isReady) {
        throw std::runtime_error("the window manager did not start");
    }
}

}  // namespace tallowcrest
