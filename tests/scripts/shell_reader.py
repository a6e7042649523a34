"""Which programs a shell script calls, as far as its text says: the first word of every command, the commands that
wrappers such as env and xargs run, and those within $(...), <(...), `...` and quoted scripts of "bash -c".

It knows the forms that this project's scripts use and no others. A command whose name is a variable is not seen."""

import re
from dataclasses import dataclass, field

BUILTINS = set(""": . [ alias bg break builtin caller cd command compgen complete compopt continue declare dirs disown echo
    enable eval exec exit export false fc fg getopts hash help history jobs kill let local logout mapfile popd printf
    pushd pwd read readarray readonly return set shift shopt source suspend test times trap true type typeset ulimit umask
    unalias unset wait""".split())
# A command follows them.
LEADERS = {"if", "then", "else", "elif", "do", "while", "until", "!", "{", "time", "coproc"}
# No command follows them in the same command.
CLOSERS = {"fi", "done", "esac", "}"}
# What runs a command that stands among its own words: its options that take a word, and its words before the command.
WRAPPERS = {
    "env": ({"-u", "-C"}, 0), "exec": ({"-a"}, 0), "builtin": (set(), 0), "xargs": ({"-n", "-P", "-I", "-L", "-d"}, 0),
    "setsid": (set(), 0), "nice": ({"-n"}, 0), "ionice": ({"-c", "-n"}, 0), "nohup": (set(), 0), "sudo": ({"-u"}, 0),
    "timeout": ({"-k", "-s"}, 1), "stdbuf": ({"-o", "-e", "-i"}, 0), "zuvo_twice": (set(), 0),
}
SHELLS = {"sh", "bash", "dash"}
ASSIGNMENT = re.compile(r"[A-Za-z_]\w*(\[[^]]*\])?\+?=")
BLANKS = " \t"


@dataclass
class Word:
    text: str = ""
    is_plain: bool = True  # its whole text is known
    is_quoted: bool = False


@dataclass
class Command:
    """The words of one simple command so far, without assignments and redirections."""

    words: list[Word] = field(default_factory=list)


class ShellReader:
    def __init__(self, text: str) -> None:
        self.text = text.replace("\\\n", " ")
        self.place = 0
        self.called: set[str] = set()
        self.functions: set[str] = set()
        self.here_documents: list[tuple[str, bool]] = []
        self.open_cases = 0

    def programs(self) -> set[str]:
        """Names and absolute paths of what is called."""
        self.read_list("")
        return {name for name in self.called if name not in self.functions | BUILTINS}

    # Single characters.

    def next(self, count: int = 1) -> str:
        return self.text[self.place:self.place + count]

    def at_end(self) -> bool:
        return self.place >= len(self.text)

    # Lists of commands.

    def read_list(self, end: str) -> None:
        """Up to and with `end`, a single character; to the end of the text if that is empty."""
        command = Command()
        cases_before = self.open_cases
        while not self.at_end():
            char = self.next()
            if end and char == end and self.open_cases == cases_before:
                self.place += 1
                break
            if char in BLANKS:
                self.place += 1
            elif char == "\n":
                self.place += 1
                self.finish(command)
                self.skip_here_documents()
            elif char == "#":
                self.place = self.line_end()
            elif self.next(2) == "((" and (not command.words or command.words[0].text == "for"):
                self.skip_past("))")
            elif self.next(2) == "[[" and not command.words:
                self.read_condition()
            elif self.next(2) == ";;":
                self.place += 2
                self.finish(command)
                self.skip_case_pattern()
            elif self.next(2) in ("<(", ">("):
                self.place += 2
                self.read_list(")")
            elif char in "<>" or re.match(r"\d+[<>]", self.text[self.place:]) or self.next(2) == "&>":
                self.read_redirection()
            elif char in ";&|":
                self.place += 1
                self.finish(command)
            elif char in "()":
                self.place += 1
                if char == ")" and len(command.words) == 1:
                    self.functions.add(command.words[0].text)  # the second character of "name()"
                    command.words.clear()
                elif char == "(" and not command.words:
                    self.read_list(")")
            else:
                self.take_word(command)
        self.finish(command)

    def take_word(self, command: Command) -> None:
        if not command.words and (assigned := ASSIGNMENT.match(self.text, self.place)):
            self.place = assigned.end()
            if self.next() == "(":
                self.place += 1
                self.read_values()
            else:
                self.read_word()
            return
        word = self.read_word()
        if not command.words and not word.is_quoted:
            if word.text in LEADERS:
                return
            if word.text == "esac":
                self.open_cases -= 1
        command.words.append(word)
        first = command.words[0].text
        if first == "case" and len(command.words) == 3 and word.text == "in":
            self.open_cases += 1
            command.words.clear()
            self.skip_case_pattern()

    def finish(self, command: Command) -> None:
        words = list(command.words)
        command.words.clear()
        if words and words[0].text == "function":
            self.functions.add(words[1].text)
        elif words and not (not words[0].is_quoted and words[0].text in CLOSERS | {"for", "select", "in"}):
            self.take_command(words)

    def take_command(self, words: list[Word]) -> None:
        name = words[0].text
        if words[0].is_plain and re.fullmatch(r"[A-Za-z0-9_./+-]+", name):
            self.called.add(name)
        name = name.rpartition("/")[2]
        if name in SHELLS:
            for option, script in zip(words, words[1:]):
                if re.fullmatch(r"-[a-z]*c", option.text) and script.is_quoted:
                    self.read_script(script.text)
        elif name in WRAPPERS:
            with_word, before = WRAPPERS[name]
            rest = words[1:]
            while rest and (rest[0].text.startswith("-") or ASSIGNMENT.match(rest[0].text)):
                rest = rest[2 if rest[0].text in with_word else 1:]
            if rest[before:]:
                self.take_command(rest[before:])

    def read_script(self, text: str) -> None:
        within = ShellReader(text)
        within.functions = self.functions
        self.called |= within.programs()

    # Words.

    def read_word(self) -> Word:
        word = Word()
        while not self.at_end():
            char = self.next()
            if char in BLANKS + "\n;&|<>()":
                break
            if char == "'":
                end = self.text.index("'", self.place + 1)
                word.text += self.text[self.place + 1:end]
                word.is_quoted = True
                self.place = end + 1
            elif char == '"':
                self.place += 1
                word.is_quoted = True
                self.read_quoted(word)
            else:
                self.read_character(word)
        return word

    def read_quoted(self, word: Word) -> None:
        while not self.at_end() and self.next() != '"':
            self.read_character(word)
        self.place += 1

    def read_character(self, word: Word) -> None:
        """One character, or what a dollar sign or a backquote begins."""
        if self.next() == "\\":
            word.text += self.next(2)[1:]
            self.place += 2
        elif self.next(3) == "$((":
            word.is_plain = False
            self.skip_past("))")
        elif self.next(2) == "$(":
            word.is_plain = False
            self.place += 2
            self.read_list(")")
        elif self.next(2) == "${":
            word.is_plain = False
            self.place += 2
            self.read_expansion()
        elif self.next() == "`":
            word.is_plain = False
            self.place += 1
            self.read_list("`")
        else:
            word.is_plain = word.is_plain and self.next() != "$"
            word.text += self.next()
            self.place += 1

    def read_expansion(self) -> None:
        """Behind "${", up to and with the brace."""
        ignored = Word()
        while not self.at_end() and self.next() != "}":
            if self.next() == '"':
                self.place += 1
                self.read_quoted(ignored)
            else:
                self.read_character(ignored)
        self.place += 1

    def read_values(self) -> None:
        """The words of an array, behind its bracket."""
        while not self.at_end() and self.next() != ")":
            if self.next() == "#":
                self.place = self.line_end()
            elif self.next() in BLANKS + "\n;&|(":
                self.place += 1
            elif self.next() in "<>":
                self.read_redirection()
            else:
                self.read_word()
        self.place += 1

    def read_condition(self) -> None:
        """[[ ... ]], in which only $(...) runs anything."""
        ignored = Word()
        while not self.at_end() and self.next(2) != "]]":
            if self.next() in "<>()&|;\n" + BLANKS:
                self.place += 1
            elif self.next() == "'":
                self.place = self.text.index("'", self.place + 1) + 1
            elif self.next() == '"':
                self.place += 1
                self.read_quoted(ignored)
            else:
                self.read_character(ignored)
        self.place += 2

    def read_redirection(self) -> None:
        operator = re.compile(r"&?\d*(<<<|<<-?|<>|>>|>\||[<>]&|[<>])").match(self.text, self.place)
        self.place = operator.end()
        if self.next() == "(":
            return  # "< <(...)"
        while self.next() and self.next() in BLANKS:
            self.place += 1
        if self.next(2) in ("<(", ">("):
            return
        word = self.read_word()
        if operator.group(1) in ("<<", "<<-"):
            self.here_documents.append((word.text, not word.is_quoted))

    # What is passed over.

    def line_end(self) -> int:
        end = self.text.find("\n", self.place)
        return len(self.text) if end < 0 else end

    def skip_past(self, end: str) -> None:
        found = self.text.find(end, self.place)
        self.place = len(self.text) if found < 0 else found + len(end)

    def skip_here_documents(self) -> None:
        for mark, has_expansions in self.here_documents:
            rest = re.compile(rf"(.*?)^\t*{re.escape(mark)}$", re.MULTILINE | re.DOTALL).match(self.text, self.place)
            if rest is None:
                raise ValueError(f"the here document {mark} has no end")
            if has_expansions:
                inner = ShellReader('"' + rest.group(1).replace('"', "") + '"')
                inner.read_word()
                self.called |= inner.called
            self.place = rest.end()
        self.here_documents.clear()

    def skip_case_pattern(self) -> None:
        """After "in" and ";;": up to the commands of the next pattern, or to the word esac."""
        rest = re.compile(r"(\s|#[^\n]*\n)*").match(self.text, self.place)
        self.place = rest.end()
        if re.compile(r"esac\b").match(self.text, self.place):
            return
        ignored = Word()
        while not self.at_end() and self.next() != ")":
            if self.next() == "'":
                self.place = self.text.index("'", self.place + 1) + 1
            elif self.next() == '"':
                self.place += 1
                self.read_quoted(ignored)
            elif self.next() in BLANKS + "|(":
                self.place += 1
            else:
                self.read_character(ignored)
        self.place += 1


def programs_of_shell(text: str) -> set[str]:
    return ShellReader(text).programs()
