#pragma once

#include "account/APIClient.h"
#include "platform/Clock.h"
#include "platform/DesktopOpener.h"

#include <QCoroTask>
#include <QObject>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace zuvo {

/// How long after `AuthManager::signIn` a sign-in link is taken for its answer.
inline constexpr std::chrono::minutes signInLinkPatience{10};

/// Who is signed in. The token comes from the service by way of the browser, or is pasted by the user, and is kept in a
/// file; name, credits and plan are the service's last answer. Nothing here is limited by them.
///
/// Lives on the thread that made it. A task keeps nothing of the manager alive: one that still waits when the manager
/// is destroyed ends without a word. No operation reports failure to its caller: the outcome is the state.
///
/// An answer is meant for the token that it was asked with: if that token has been replaced or dropped meanwhile, the
/// answer to a refresh changes nothing.
class AuthManager final : public QObject {
    Q_OBJECT
public:
    /// Reads the token that `tokenFile` holds, if any, and has it refreshed once the event loop turns. A program makes
    /// one manager and hands it to all that show it. `clock` tells how long ago a sign-in was begun.
    AuthManager(
        APIClient client, std::shared_ptr<DesktopOpener> desktop, std::string tokenFile,
        Clock clock = [] { return QDateTime::currentDateTime(); });

    /// True from an answer of the service to this token until `signOut`; a token that was read from the file counts
    /// only once the service has answered.
    [[nodiscard]] bool isSignedIn() const { return m_state.isSignedIn; }
    // As the service last told; empty, 0 and "Free" while nobody is signed in. Name and address come from the file
    // until then.
    [[nodiscard]] const std::string& userName() const { return m_state.userName; }
    [[nodiscard]] const std::string& userEmail() const { return m_state.userEmail; }
    [[nodiscard]] std::int64_t credits() const { return m_state.credits; }
    [[nodiscard]] const std::string& plan() const { return m_state.plan; }
    [[nodiscard]] bool isLoading() const { return m_state.isLoading; } ///< while a sign-in waits for the service
    /// Why the last sign-in failed, for the user; holds no token.
    [[nodiscard]] const std::optional<std::string>& errorMessage() const { return m_state.errorMessage; }

    /// The token held, whether or not the service has answered to it. Not to be shown or logged.
    [[nodiscard]] std::optional<std::string> getToken() const { return m_token; }

    /// Opens the service's sign-in page in the browser, from which a sign-in link comes back. If the service's address
    /// is refused, `errorMessage` says so and nothing is opened.
    void signIn();

    /// Asks the service whose token it is (less white space at its ends), keeps it in the file and signs its owner in.
    /// What fails of this is told by `errorMessage`, and leaves the earlier token, file and user as they were. Of two
    /// that overlap, the last answer wins.
    QCoro::Task<void> signInWithToken(std::string token);

    /// Forgets user, token and file. A file that cannot be deleted stays, unseen.
    void signOut();

    /// Asks the service anew about the token, if there is one. A 401 signs out; any other failure changes nothing, so
    /// that a token outlives a time without a network.
    QCoro::Task<void> refreshUser();

    /// Takes a sign-in link (`tokenOfCallbackUrl`), once the event loop turns; any other text is passed over. Any page
    /// and any program can open one: only within `signInLinkPatience` of a `signIn` does its token sign in. Else the
    /// service is asked whose token it is, and `offeredUser` waits for the user's word.
    void handleCallback(const std::string& url);

    /// Who a sign-in link that nobody here asked for would sign in; nothing of it is kept until it is accepted. A later
    /// link takes the place of an earlier one.
    [[nodiscard]] const std::optional<UserInfo>& offeredUser() const { return m_offeredUser; }
    void acceptOfferedUser();  ///< signs that user in; does nothing without one
    void declineOfferedUser(); ///< forgets user and token

Q_SIGNALS:
    void isSignedInChanged();
    void userNameChanged();
    void userEmailChanged();
    void creditsChanged();
    void planChanged();
    void isLoadingChanged();
    void errorMessageChanged();
    void offeredUserChanged();

private:
    struct State {
        bool isSignedIn = false;
        std::string userName;
        std::string userEmail;
        std::int64_t credits = 0;
        std::string plan = "Free";
        bool isLoading = false;
        std::optional<std::string> errorMessage;
    };

    void loadStoredToken();
    [[nodiscard]] bool wasSignInBegunLately() const;
    QCoro::Task<void> offerSignIn(std::string token);
    /// Asks the service whose token that is, with `isLoading` and `errorMessage` to match; nothing if it fails. After
    /// it the manager may be gone.
    QCoro::Task<std::optional<UserInfo>> ownerOf(std::string trimmedToken);
    /// Keeps the token in the file and signs its owner in, or says why not.
    void keepSignIn(const std::string& token, const UserInfo& user);
    void setOffer(std::string token, std::optional<UserInfo> user);
    [[nodiscard]] std::error_code saveToken(const std::string& token, const UserInfo& user) const;

    /// Takes the state over as a whole, then tells what has changed.
    void setState(State state);
    void setErrorMessage(std::string message);
    void setToken(std::optional<std::string> token);
    [[nodiscard]] State signedInState(const UserInfo& user) const;

    APIClient m_client;
    std::shared_ptr<DesktopOpener> m_desktop;
    std::string m_tokenFile;
    std::optional<std::string> m_token;
    std::uint64_t m_tokenNumber = 0; ///< counts the tokens held, so that an answer knows if it is still meant
    State m_state;
    Clock m_clock;
    std::optional<QDateTime> m_signInBegun;
    std::string m_offeredToken; ///< empty without an offered user
    std::optional<UserInfo> m_offeredUser;
};

} // namespace zuvo
