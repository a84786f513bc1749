#pragma once

#include <string>
#include <vector>

/// One file of a batch and the file that it becomes.
struct BatchJob {
  std::string input;
  std::string output;  // empty where none is to be written
};

/// Which files a batch takes and where the results go.
struct BatchFiles {
  std::vector<std::string> inputs;  // files, folders, and @ before the name of a list of these; @- is the list on standard input
  bool is_recursive = false;        // folders within folders too
  std::string output_folder;        // empty: beside the inputs
  std::string suffix;               // of the outputs' names, before the extension
};

/// Where the outputs of a batch go.
enum class BatchWriting { new_files, in_place, nothing };

/// The jobs that the inputs stand for, in their order; those of a folder by their names. A folder stands for the files in it whose
/// extension is that of a format that can be read, hidden ones left out; what lies in folders within it keeps their names under the
/// output folder. The output has the extension of the input where that can be written, and .stl otherwise.
///
/// Throws a Failure where a list or a folder cannot be read, where there is no input at all, where two outputs would be one file,
/// and where an output would be the input of another job. Whether a file is there and sound is left to the job.
std::vector<BatchJob> find_jobs(const BatchFiles& files, BatchWriting writing);

/// Makes the folders that the outputs go to; throws where that cannot be done.
void make_folders(const std::vector<BatchJob>& jobs);
