// Tells in JSON what a PowerShell script is made of: where it is none, the commands that it calls, the
// functions that it has, and the variables that it sets and uses.
import {readFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {Language, Parser} from 'web-tree-sitter';

const grammar = createRequire(import.meta.url).resolve('tree-sitter-powershell/tree-sitter-powershell.wasm');
await Parser.init();
const parser = new Parser();
parser.setLanguage(await Language.load(grammar));

// A variable is set by an assignment, as a parameter, or by the loop that it is the first child of.
function sets(variable) {
    for (let node = variable; node.parent; node = node.parent) {
        if (node.type === 'left_assignment_expression' || node.type === 'script_parameter') {
            return true;
        }
        if (node.parent.type === 'foreach_statement') {
            return node.parent.namedChildren.find(child => child.type === 'variable').id === node.id;
        }
    }
    return false;
}

const found = {problems: [], commands: [], functions: [], set: [], used: []};

function visit(node) {
    const {row, column} = node.startPosition;
    if (node.isError || node.isMissing) {
        found.problems.push(`${row + 1}:${column + 1}: ${node.isMissing ? `${node.type} is missing` : node.text}`);
    } else if (node.type === 'command_name') {
        found.commands.push(node.text);
    } else if (node.type === 'function_name') {
        found.functions.push(node.text);
    } else if (node.type === 'variable' || node.type === 'braced_variable') {
        const name = node.text.replace(/^\$\{?|\}$/g, '');
        (sets(node) ? found.set : found.used).push(name);
    }
    node.children.forEach(visit);
}

visit(parser.parse(readFileSync(process.argv[2], 'utf8')).rootNode);
console.log(JSON.stringify(found));
