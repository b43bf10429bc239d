#include "integration/startup_files.h"

#include <cstddef>

#include <fmt/format.h>

#include "core/text.h"

namespace tallowcrest {
namespace {

/// A value of the type "string" in a desktop entry.
std::string entryString(std::string_view text) {
    std::string value;
    for (const char c : text) {
        switch (c) {
            case '\\':
                value += "\\\\";
                break;
            case '\n':
                value += "\\n";
                break;
            case '\r':
                value += "\\r";
                break;
            case '\t':
                value += "\\t";
                break;
            default:
                value += c;
        }
    }
    // A blank at the start of a value would be skipped.
    return value.starts_with(' ') ? "\\s" + value.substr(1) : value;
}

/// The value of "Exec" that starts exactly this program: a quoted argument, whose backslashes the
/// type of the value then doubles.
std::string execValue(std::string_view path) {
    std::string argument = "\"";
    for (const char c : path) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') {
            argument += '\\';
        } else if (c == '%') {
            // A single one begins a field code.
            argument += '%';
        }
        argument += c;
    }
    return entryString(argument + '"');
}

std::string xmlText(std::string_view text) {
    std::string escaped;
    for (const char c : replacingInvalidUTF8(text)) {
        if (c == '&') {
            escaped += "&amp;";
        } else if (c == '<') {
            escaped += "&lt;";
        } else if (c == '>') {
            escaped += "&gt;";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string desktopEntry(std::string_view application, std::string_view more) {
    return fmt::format(R"([Desktop Entry]
Type=Application
Name=Tallowcrest
Comment=Watches this computer and says in plain words what it sees
Exec={}
TryExec={}
Icon=tallowcrest
Terminal=false
{})",
                       execValue(application), entryString(application), more);
}

}  // namespace

std::string menuEntry(std::string_view application) {
    return desktopEntry(application, "Categories=System;Monitor;\nStartupNotify=true\n");
}

std::string autostartEntry(std::string_view application) {
    return desktopEntry(application, "StartupNotify=false\n");
}

bool isTurnedOff(std::string_view entry) {
    bool isInGroup = false;
    while (const auto line = takeLine(entry)) {
        const std::string_view text = trimmingWhiteSpace(*line);
        if (text.starts_with('[')) {
            isInGroup = text == "[Desktop Entry]";
        }
        const std::size_t equals = text.find('=');
        if (!isInGroup || equals == std::string_view::npos) {
            continue;
        }
        const std::string_view key = trimmingWhiteSpace(text.substr(0, equals));
        const std::string_view value = trimmingWhiteSpace(text.substr(equals + 1));
        if ((key == "Hidden" && value == "true") ||
            (key == "X-GNOME-Autostart-enabled" && value == "false")) {
            return true;
        }
    }
    return false;
}

std::string launchAgent(std::string_view application) {
    return fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>Label</key>
	<string>com.rowanhesket.tallowcrest.pro</string>
	<key>ProgramArguments</key>
	<array>
		<string>/usr/bin/open</string>
		<string>{}</string>
	</array>
	<key>RunAtLoad</key>
	<true/>
</dict>
</plist>
)",
                       xmlText(application));
}

}  // namespace tallowcrest
