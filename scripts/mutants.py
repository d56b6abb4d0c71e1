"""The mutants of a C++ source text: each differs from it by one operator, constant, condition or
statement. What can't be told from the tokens alone is left to the compiler, which refuses it."""
import re
from dataclasses import dataclass

TOKEN = re.compile(r"""
    (?P<space>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<string>R"\((?:.*?)\)"|"(?:\\.|[^"\\\n])*")
  | (?P<char>'(?:\\.|[^'\\\n])+')
  | (?P<number>(?:0[xX][0-9a-fA-F']+|(?:\d[\d']*\.?\d*|\.\d+)(?:[eE][+-]?\d+)?)[uUlLfF]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|\.\.\.|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|::|.)
""", re.VERBOSE | re.DOTALL | re.MULTILINE)

# Only between spaces, which is where the format puts operators of two operands; pointers,
# references and angle brackets stand without one on one side at least.
OPERATORS = {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
             "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
             "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
             "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="],
             "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["&"],
             "|=": ["&="], "&=": ["|="], "<<=": [">>="], ">>=": ["<<="]}
WORDS = {"true": "false", "false": "true"}

# A statement with one of these is no mutant and holds none.
UNTOUCHED = {"Q_ASSERT", "assert", "static_assert", "qDebug", "qInfo", "qWarning", "qCritical",
             "reserve", "using", "template", "operator", "extern", "Q_DECLARE_METATYPE", "friend"}
# A statement that begins with one of these can't be left out on its own.
KEPT = {"if", "else", "for", "while", "do", "switch", "case", "default", "return", "namespace", "class",
        "struct", "enum", "typedef", "public", "private", "protected", "const", "static",
        "constexpr", "auto", "virtual", "explicit", "inline", "friend", "Q_OBJECT", "goto"}
DECLARATION = re.compile(r"(?:const )?[A-Za-z_][\w:]*(?:<.*>)?[&*]* [&*]*[A-Za-z_]\w*\s*(?:[=;({\[,]|$)")


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclass(frozen=True)
class Mutant:
    path: str
    start: int
    end: int
    new: str

    def described(self, source):
        line = source.count("\n", 0, self.start) + 1
        old = " ".join(source[self.start:self.end].split())
        change = f"without {old}" if not self.new else f"{old}  ->  {self.new}"
        return f"{self.path}:{line}: {change}"


def tokens_of(source):
    found = (Token(m.lastgroup, m.group(), m.start()) for m in TOKEN.finditer(source))
    return [token for token in found if token.kind != "space"]


def closing(tokens, opening):
    """The index of the bracket that closes the one at opening; None without one."""
    depth = 0
    for i in range(opening, len(tokens)):
        depth += (tokens[i].text in "([{") - (tokens[i].text in ")]}")
        if depth == 0:
            return i
    return None


def statement_end(tokens, first):
    """The index of the semicolon of a statement that begins at first and is no block."""
    i = first
    while i is not None and i < len(tokens):
        text = tokens[i].text
        if text == ";":
            return i
        if text in (")", "]", "}") or (text == "{" and tokens[i - 1].text not in ("=", "return")):
            return None
        i = closing(tokens, i) if text in ("(", "[", "{") else i
        i = i if i is None else i + 1
    return None


def next_number(text):
    """A whole number plus one, the double of any other."""
    is_hex = text.lower().startswith("0x")
    digits = text.rstrip("uUlL" if is_hex else "uUlLfF")
    suffix, plain = text[len(digits):], digits.replace("'", "")
    if is_hex:
        return hex(int(plain, 16) + 1) + suffix
    if any(c in plain for c in ".eE"):
        return repr(2.0 * float(plain) or 1.0) + suffix
    return str(int(plain) + 1) + suffix


def changes_of_token(source, token):
    """What may stand in its place."""
    before, after = source[token.start - 1:token.start], source[token.end:token.end + 1]
    if token.kind == "sign" and before.isspace() and after.isspace():
        return OPERATORS.get(token.text, [])
    if token.text in ("!", "-") and not after.isspace() and before in " (":
        return [""]
    if token.kind == "number":
        return [next_number(token.text)]
    if token.kind == "string" and token.text[0] == '"' and len(token.text) > 2:
        return [token.text[:-1] + '~"']
    if token.kind == "char":
        return ["'~'"]
    return [WORDS[token.text]] if token.text in WORDS else []


def mutants_of_statement(path, source, tokens, first):
    """Leaving out the statement that begins at first; forcing its condition."""
    word = tokens[first].text
    if word in ("if", "while") and tokens[first + 1].text == "(":
        last = closing(tokens, first + 1)
        span = (tokens[first + 1].end, tokens[last].start)
        yield [Mutant(path, *span, value) for value in ("true", "false")[word == "while":]]
    end = statement_end(tokens, first)
    if tokens[first].kind != "word" and word not in ("*", "++", "--", "(", "::"):
        return
    if end is None or (word in KEPT and not (word == "return" and end == first + 1)):
        return
    text = source[tokens[first].start:tokens[end].end]
    if word in ("throw", "delete", "emit") or not DECLARATION.match(text):
        yield [Mutant(path, tokens[first].start, tokens[end].start, "")]


def mutants_of(path, source):
    """Those of each place that can be changed, as a list of lists."""
    tokens = tokens_of(source)
    result = []
    begins, skipped_to, head, loop_head_end = True, -1, "", -1
    for i, token in enumerate(tokens):
        begins = begins and i > loop_head_end
        if begins:
            head = token.text
        if begins and i > skipped_to:
            end = next((k for k in range(i, len(tokens)) if tokens[k].text in (";", "{", "}")), i)
            if any(tokens[k].text in UNTOUCHED for k in range(i, end)):
                skipped_to = max(end, statement_end(tokens, i) or end)
            else:
                result += mutants_of_statement(path, source, tokens, i)
        if i > skipped_to:
            new_texts = changes_of_token(source, token)
            if new_texts:
                result.append([Mutant(path, token.start, token.end, new) for new in new_texts])
        begins = token.text in (";", "{", "}", "else") or (
            token.text == ":" and head in ("case", "default"))
        if token.text == "for":
            loop_head_end = closing(tokens, i + 1) or i
    return result
