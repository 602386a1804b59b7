// Prints what is wrong with the bills of materials that are named, and ends with 1 when anything is.
import {readFileSync} from 'node:fs';
import {Validation} from '@cyclonedx/cyclonedx-library';

const validator = new Validation.JsonStrictValidator('1.6');
for (const file of process.argv.slice(2)) {
    const problems = await validator.validate(readFileSync(file, 'utf8'));
    if (problems !== null) {
        console.log(file, JSON.stringify(problems, null, 2));
        process.exitCode = 1;
    }
}
