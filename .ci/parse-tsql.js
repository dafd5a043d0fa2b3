// Parses server scripts with a grammar of the server's language.
//
// node parse-tsql.js FILE...: prints "file:line:column reason" for each error and ends with 1 if there is any.
// NODE_PATH names the folder of the packages.
'use strict';
const fs = require('fs');
const { ANTLRInputStream, CommonTokenStream } = require('antlr4ts');
const { TSQLGrammar, TSqlLexer } = require('antlr4ts-sql');

function errorsOf(text) {
    const errors = [];
    const listener = {
        syntaxError: (recognizer, symbol, line, column, reason) => errors.push({ line, column, reason }),
    };
    // The grammar knows its keywords in capitals only.
    const lexer = new TSqlLexer(new ANTLRInputStream(text.toUpperCase()));
    lexer.removeErrorListeners();
    lexer.addErrorListener(listener);
    const parser = new TSQLGrammar.TSqlParser(new CommonTokenStream(lexer));
    parser.removeErrorListeners();
    parser.addErrorListener(listener);
    parser.tsql_file();
    return errors;
}

/// Whether the script with a bracket too many or too few is refused.
function refusesDamage(text) {
    const code = text.replace(/--.*$/gm, '');
    const damages = [code.replace('(', '(('), code.replace(')', '')];
    return damages.every((damaged) => damaged !== code && errorsOf(damaged).length > 0);
}

let failed = process.argv.length < 3;
for (const file of process.argv.slice(2)) {
    const text = fs.readFileSync(file, 'utf8');
    for (const { line, column, reason } of errorsOf(text)) {
        console.error(`${file}:${line}:${column + 1} ${reason}`);
        failed = true;
    }
    if (!refusesDamage(text)) {
        console.error(`${file}: a damaged copy is not refused, so this check says nothing`);
        failed = true;
    }
}
process.exit(failed ? 1 : 0);
