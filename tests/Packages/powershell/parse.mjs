// Prints where the scripts that are named are no PowerShell, and ends with 1 when there is such a place.
import {readFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {Language, Parser} from 'web-tree-sitter';

const grammar = createRequire(import.meta.url).resolve('tree-sitter-powershell/tree-sitter-powershell.wasm');
await Parser.init();
const parser = new Parser();
parser.setLanguage(await Language.load(grammar));

function report(file, node) {
    if (node.isError || node.isMissing) {
        const {row, column} = node.startPosition;
        console.log(`${file}:${row + 1}:${column + 1}: ${node.isMissing ? `${node.type} is missing` : node.text}`);
        process.exitCode = 1;
    }
    node.children.forEach(child => report(file, child));
}

for (const file of process.argv.slice(2)) {
    report(file, parser.parse(readFileSync(file, 'utf8')).rootNode);
}
