// Prints the type of the looks' names, from the module itself:  node web/looks-types.js PACKAGE
import { resolve } from 'node:path';
import { pathToFileURL } from 'node:url';

const entry = pathToFileURL(resolve(process.argv[2], 'node.js'));
const { createLumora } = await import(entry.href);
const { looks } = await createLumora();
const names = looks.map(({ name }) => `  | '${name}'`).join('\n');
console.log(`/** The looks. Aliases (\`retro\` for \`fugu\`) and mode numbers are taken, too. */
export type LookName =
${names};`);
