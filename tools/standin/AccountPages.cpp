#include "standin/AccountPages.h"

#include <QUuid>
#include <string>

namespace zuvo::standin {
namespace {

constexpr std::string_view pageTop = R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Zuvo</title>
<style>
* { box-sizing: border-box; }
html { color-scheme: dark; }
body { margin: 0; min-height: 100vh; display: grid; place-items: center; padding: 24px;
       background: radial-gradient(circle at 50% 0, #241d33, #100e14 65%); color: #ece8f2;
       font: 16px/1.5 Inter, system-ui, sans-serif; }
main { width: 100%; max-width: 400px; padding: 40px 32px; border: 1px solid #ffffff1a; border-radius: 20px;
       background: #1a1720; box-shadow: 0 16px 48px #0008; text-align: center; }
.gem { width: 36px; height: 36px; margin: 0 auto 28px; border-radius: 6px; transform: rotate(45deg);
       background: linear-gradient(135deg, #f6c667, #d98b2b); }
h1 { margin: 0 0 8px; font-size: 24px; font-weight: 600; }
p { margin: 0 0 28px; color: #aaa3b6; }
a { display: block; padding: 14px; border-radius: 14px; background: #eab04c; color: #1b1408; font-weight: 600;
    text-decoration: none; }
a:hover { background: #f4c163; }
a:focus-visible { outline: 3px solid #ece8f2; outline-offset: 3px; }
small { display: block; margin-top: 24px; color: #8b8497; }
</style>
</head>
<body>
<main>
<div class="gem" aria-hidden="true"></div>
)";

constexpr std::string_view pageBottom =
    R"(<small>This is the stand-in on your own machine. No account is involved.</small>
</main>
</body>
</html>
)";

Answer page(int status, std::string_view content) {
    std::string body(pageTop);
    body += content;
    body += pageBottom;
    return {status, std::move(body), {{"Content-Type", "text/html; charset=utf-8"}, {"Cache-Control", "no-store"}}};
}

} // namespace

Answer signInPage(std::string_view callback) {
    if (callback != signInCallback)
        return page(400, "<h1>No way back</h1>\n<p>This sign-in page was not opened by Zuvo Manager.</p>\n");
    const std::string token = "zuvo_" + QUuid::createUuid().toString(QUuid::Id128).toStdString();
    return page(200, "<h1>Sign in to Zuvo</h1>\n<p>Zuvo Manager asks to use your account.</p>\n<a href=\"" +
                         std::string(signInCallback) + "?token=" + token + "\">Continue to Zuvo Manager</a>\n");
}

Answer billingPage() {
    return page(200, "<h1>Credits</h1>\n<p>Nothing is sold here.</p>\n");
}

} // namespace zuvo::standin
