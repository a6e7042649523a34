#include "fakes/pipeline/PipelineFixture.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

// Where the keys come from. The user database's home folder is one of the test's own, so that no test can find a
// developer's real key.
class Credentials : public PipelineFixture {
protected:
    Credentials() { variables.clear(); }

    void givenFile(const std::string& name, const std::string& text) { write(realHome + "/" + name, text); }
};

} // namespace

TEST_F(Credentials, theVariablesComeFirst) {
    variables = {{"OPENAI_API_KEY", "from variable"}, {"ANTHROPIC_API_KEY", "also from variable"}};
    givenFile(".zshrc", "OPENAI_API_KEY=file\nANTHROPIC_API_KEY=file\n");
    givenFile(".config/anthropic/api_key", "file");
    EXPECT_EQ(pipeline->openaiKey(), "from variable");
    EXPECT_EQ(pipeline->anthropicKey(), "also from variable");
}

TEST_F(Credentials, anEmptyVariableIsTheAnswerForOneServiceAndPassedOverForTheOther) {
    variables = {{"OPENAI_API_KEY", ""}, {"ANTHROPIC_API_KEY", ""}};
    givenFile(".zshrc", "OPENAI_API_KEY=file\nANTHROPIC_API_KEY=file\n");
    EXPECT_EQ(pipeline->openaiKey(), "");
    EXPECT_EQ(pipeline->anthropicKey(), "file");
}

TEST_F(Credentials, withoutAnythingBothAreEmpty) {
    EXPECT_EQ(pipeline->openaiKey(), "");
    EXPECT_EQ(pipeline->anthropicKey(), "");
}

TEST_F(Credentials, theKeyFilesAreTriedInOrderBeforeTheShellFiles) {
    givenFile(".zshrc", "ANTHROPIC_API_KEY=shell\n");
    EXPECT_EQ(pipeline->anthropicKey(), "shell");
    givenFile(".zuvo/anthropic.key", "second\n");
    EXPECT_EQ(pipeline->anthropicKey(), "second");
    givenFile(".config/anthropic/api_key", " \tfirst\r\n\n");
    EXPECT_EQ(pipeline->anthropicKey(), "first");
}

TEST_F(Credentials, aKeyFileThatIsBlankOrNoTextIsPassedOver) {
    givenFile(".zuvo/anthropic.key", "second");
    givenFile(".config/anthropic/api_key", " \n");
    EXPECT_EQ(pipeline->anthropicKey(), "second");
    givenFile(".config/anthropic/api_key", "\xff\xfe");
    EXPECT_EQ(pipeline->anthropicKey(), "second");
}

TEST_F(Credentials, theOtherServiceHasNoKeyFile) {
    givenFile(".zuvo/openai.key", "file");
    givenFile(".config/openai/api_key", "file");
    EXPECT_EQ(pipeline->openaiKey(), "");
}

TEST_F(Credentials, theShellFilesAreTriedInOrder) {
    std::vector<std::string> found;
    for (const auto* name : {".bashrc", ".bash_profile", ".zshenv", ".zshrc"}) {
        givenFile(name, std::string("export OPENAI_API_KEY=in") + name + "\nexport OPENAI_API_KEY=second\n");
        found.push_back(pipeline->openaiKey());
    }
    EXPECT_THAT(found, ElementsAre("in.bashrc", "in.bash_profile", "in.zshenv", "in.zshrc"));
}

TEST_F(Credentials, aShellFileWithoutTheKeyOrWithAnEmptyOneLetsTheNextSpeak) {
    givenFile(".zshrc", "# OPENAI_API_KEY=no\nOPENAI_API_KEY=\nOPENAI_API_KEY=\"\"\n");
    givenFile(".zshenv", "\xff OPENAI_API_KEY=no\n");
    givenFile(".bashrc", "OPENAI_API_KEY='abc'\n");
    EXPECT_EQ(pipeline->openaiKey(), "abc");
}

TEST_F(Credentials, quotesAreDroppedInPairsOnly) {
    givenFile(".zshrc", "export OPENAI_API_KEY=\"abc\"\nexport ANTHROPIC_API_KEY=\"abc\n");
    EXPECT_EQ(pipeline->openaiKey(), "abc");
    EXPECT_EQ(pipeline->anthropicKey(), "\"abc");
}

TEST_F(Credentials, theHomeVariableIsNotWhereKeysAreLookedFor) {
    write(home + "/.zshrc", "OPENAI_API_KEY=no\nANTHROPIC_API_KEY=no\n");
    write(home + "/.zuvo/anthropic.key", "no");
    EXPECT_EQ(pipeline->openaiKey(), "");
    EXPECT_EQ(pipeline->anthropicKey(), "");
}

TEST_F(Credentials, aKeyIsReadAnewAtEachUse) {
    givenFile(".zuvo/anthropic.key", "one");
    EXPECT_EQ(pipeline->anthropicKey(), "one");
    givenFile(".zuvo/anthropic.key", "two");
    EXPECT_EQ(pipeline->anthropicKey(), "two");
}
